#!/usr/bin/python3
"""Lights a folder of photographs of 8 bits on the workers of a Dask cluster, or on workers of its own.

    light_folder.py photos lit --style "Evening Lamp" --scheduler tcp://one:8786

The workers need the package limn, PIL, and both folders at the same places. Dask gives the work to whichever worker is
free, tries a photograph again whose worker dies, and shows progress on its dashboard. A photograph that is there in
`lit` is not lit again.
"""

import argparse
import os
import pathlib
import sys

import limn
import numpy as np
from distributed import Client, as_completed
from PIL import Image

EXTENSIONS = {".jpg", ".jpeg", ".png", ".tif", ".tiff", ".ppm", ".webp"}


def light_file(source: str, target: str, style: str) -> str:
    """Lights one file. The target appears when it is complete."""
    with Image.open(source) as photograph:
        pixels = np.asarray(photograph.convert("RGB"))
        extra = {name: photograph.info[name] for name in ("icc_profile", "exif") if name in photograph.info}
    lit = Image.fromarray(limn.light(pixels, limn.Style.from_json(style), threads=1))
    folder, name = os.path.split(target)
    os.makedirs(folder, exist_ok=True)
    part = os.path.join(folder, f".{os.getpid()}-{name}")
    try:
        lit.save(part, **extra)
        os.replace(part, target)
    finally:
        if os.path.exists(part):
            os.unlink(part)
    return target


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("photos", type=pathlib.Path)
    parser.add_argument("lit", type=pathlib.Path)
    parser.add_argument("--style", default="Default", help="a style's name, or its file")
    parser.add_argument("--scheduler", help="the cluster's address; without one, workers of this machine are started")
    parser.add_argument("--workers", type=int, default=2, help="how many, of this machine")
    options = parser.parse_args()
    style = limn.Style.load(options.style) if os.path.exists(options.style) else limn.Style(options.style)
    client = Client(options.scheduler) if options.scheduler else Client(n_workers=options.workers, threads_per_worker=1,
                                                                         dashboard_address=None)
    with client:
        jobs = {}
        for source in sorted(options.photos.rglob("*")):
            target = options.lit / source.relative_to(options.photos)
            if source.suffix.lower() in EXTENSIONS and not target.exists():
                job = client.submit(light_file, os.fspath(source.absolute()), os.fspath(target.absolute()),
                                    style.to_json(), retries=2, pure=False)
                jobs[job] = source
        failures = 0
        for number, job in enumerate(as_completed(jobs), 1):
            error = job.exception()
            failures += error is not None
            print(f"{number}/{len(jobs)} {jobs[job]}" + (f": {error}" if error else ""), flush=True)
    return 3 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
