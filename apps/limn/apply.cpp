#include "apply.h"

#include "apply_one.h"
#include "atomic_file.h"
#include "image_shard.h"
#include "image_source.h"
#include "name_list.h"
#include "output_target.h"
#include "progress_bar.h"
#include "report.h"
#include "style_source.h"
#include "temporary_sweep.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <sched.h>
#include <set>
#include <unistd.h>

namespace limn {
namespace {

int NumProcessors() {
  cpu_set_t set;
  CPU_ZERO(&set);
  return sched_getaffinity(0, sizeof set, &set) == 0 ? std::max(1, CPU_COUNT(&set)) : 1;
}

void PrintJson(const nlohmann::ordered_json& line) {
  PrintLine(line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
  std::fflush(stdout); // a line for each image as it is done, also into a pipe
}

// Prints what happens to the images of a batch.
class Reporter {
public:
  explicit Reporter(const ApplyPlan& plan)
      : _plan(plan),
        _bar(plan.options.quiet ? ProgressBar::Wanted::No : ProgressBar::Wanted::IfTerminal,
             plan.pairs.size()) {}

  ExitCode Worst() const { return _worst; }

  void Progress(size_t job, double share) { _bar.Update(job, share); }

  // What is true of the whole batch is told by each of its images, and printed once.
  void Notice(const std::string& text) {
    if (_plan.options.quiet || !_told.insert(text).second)
      return;
    _bar.Clear();
    PrintProblem(text);
  }

  void Result(const JobResult& result) {
    _bar.Clear();
    if (result.code == ExitCode::Done)
      _Done(result);
    else
      _Failed(result);
    _bar.Update(result.job, 1);
  }

  void Skipped(const ImagePair& pair) {
    if (_plan.options.json)
      PrintJson(_LineOf(pair, {{"skipped", true}}));
  }

  // line: what is told of it in JSON.
  void Failed(const Failure& failure, nlohmann::ordered_json line) {
    PrintProblem(failure.what());
    line.update({{"error", failure.what()}, {"code", static_cast<int>(failure.Code())}});
    if (_plan.options.json)
      PrintJson(line);
    _worst = std::max(_worst, failure.Code());
  }

private:
  nlohmann::ordered_json _LineOf(const ImagePair& pair,
                                 const nlohmann::ordered_json& figures) const {
    nlohmann::ordered_json line = {{"input", pair.input}, {"output", pair.output.path}};
    if (_plan.styles.size() > 1)
      line["style"] = _plan.labels[pair.style];
    line.update(figures);
    return line;
  }

  void _Done(const JobResult& result) {
    const ImagePair& pair = _plan.pairs[result.job];
    const JobDone& done = result.done;
    if (done.skipped != JobDone::No) {
      Skipped(pair);
      if (!_plan.options.quiet && !_plan.options.json)
        PrintProblem(pair.output.path + (done.skipped == JobDone::UpToDate
                                             ? ": is up to date"
                                             : ": has come meanwhile, and is kept"));
    } else if (_plan.options.json) {
      nlohmann::ordered_json line = _LineOf(pair, {{"size", {done.width, done.height}}});
      if (_plan.options.isDryRun)
        line["dryRun"] = true;
      else
        line["seconds"] = std::round(result.seconds * 1000) / 1000;
      PrintJson(line);
    } else if (!_plan.options.quiet && !IsStandardOutput(pair.output.path)) {
      char figures[80];
      if (_plan.options.isDryRun)
        std::snprintf(figures, sizeof figures, " (%d × %d, not written)", done.width, done.height);
      else
        std::snprintf(figures, sizeof figures, " (%d × %d, %.2f s)", done.width, done.height,
                      result.seconds);
      PrintLine(Printable(ShownName(pair.input) + " → " + pair.output.path) + figures);
    }
  }

  void _Failed(const JobResult& result) {
    const ImagePair& pair = _plan.pairs[result.job];
    const std::string sentence =
        result.hasDied ? ShownName(pair.input) + ": " + result.sentence : result.sentence;
    Failed(Failure(result.code, sentence), _LineOf(pair, nlohmann::ordered_json::object()));
  }

  const ApplyPlan& _plan;
  ProgressBar _bar;
  std::set<std::string> _told; // notices
  ExitCode _worst = ExitCode::Done;
};

// What to light, before any look at what is there already.
ImageList Images(const ApplyPlan& plan) {
  const ApplyOptions& options = plan.options;
  const Shard shard = ParseShard(options.shard);
  ImageNames names{options.images, {}};
  if (!options.listFile.empty())
    names.listed = ReadNameList(options.listFile, options.isListNul ? '\0' : '\n');
  ImageList list = ListImages(names, {options.output, options.format, plan.labels},
                              options.isRecursive ? Folders::Walk : Folders::Refuse);
  list.pairs = OfShard(std::move(list.pairs), shard);
  return list;
}

// What all images need.
std::vector<std::string> SharedFiles(const ApplyPlan& plan) {
  std::vector<std::string> files;
  if (!plan.options.mask.empty())
    files.push_back(plan.options.mask);
  files.insert(files.end(), plan.options.channels.begin(), plan.options.channels.end());
  // Only --relief names a file, and it does so for all styles.
  if (plan.reliefs[0].kind == LM_height_kind::File)
    files.push_back(plan.reliefs[0].file);
  return files;
}

void AddStyle(ApplyPlan& plan, const std::string& name) {
  const NamedStyle named = FindStyle(name, plan.options.settings);
  plan.styles.push_back(named.style);
  plan.reliefs.push_back(ReliefOf(plan.options.relief, named, plan.options.channels));
  plan.labels.push_back(LabelOf(name));
  if (!named.warning.empty() && !plan.options.quiet)
    PrintProblem(LabelOf(name) + ": " + named.warning);
}

ApplyPlan MakePlan(const ApplyOptions& options) {
  ApplyPlan plan;
  plan.options = options;
  plan.area = ParseArea(options.area);
  if (!options.relief.normals.empty() && (options.isWritingRecipe || options.isUpdating))
    throw Failure(ExitCode::WrongUsage,
                  "--normals has no place in a recipe, but heights have: limn "
                  "heights --normals writes them for --relief");
  for (const std::string& name : options.styles)
    AddStyle(plan, name);
  if (options.styles.empty())
    AddStyle(plan, "");
  // Missing ones are reported once, not for each image.
  for (const std::string& file : SharedFiles(plan))
    OpenRegularFile(file);
  ImageList list = Images(plan);
  plan.pairs = std::move(list.pairs);
  plan.failures = std::move(list.failures);
  for (ImagePair& pair : plan.pairs) {
    try {
      pair.target = ResolveTarget(pair.output.path);
    } catch (const Failure&) {
      pair.target = pair.output.path; // that image fails when its turn comes
    }
  }
  return plan;
}

// Takes images whose output exists out of the plan, and returns them. Where none is written, none
// would remove what killed runs have left.
std::vector<ImagePair> SkipExisting(ApplyPlan& plan) {
  std::vector<ImagePair> skipped;
  const size_t numPairs = plan.pairs.size();
  std::erase_if(plan.pairs, [&](const ImagePair& pair) {
    std::error_code error;
    const bool isThere =
        pair.target != STANDARD_OUTPUT && std::filesystem::is_regular_file(pair.target, error);
    if (isThere)
      skipped.push_back(pair);
    return isThere;
  });
  for (const ImagePair& pair : skipped)
    if (!plan.options.isDryRun)
      SweepOnce(FolderOf(pair.target));
  if (!skipped.empty() && !plan.options.json && !plan.options.quiet)
    PrintProblem("skipped " + std::to_string(skipped.size()) + " of " + std::to_string(numPairs) +
                 (numPairs == 1 ? " image" : " images") + ": the output is there already");
  return skipped;
}

// Inside a worker.
JobDone Work(const ApplyPlan& plan, std::optional<ApplyTools>& tools, size_t job,
             const JobChannel& channel) {
  try {
    if (!tools) {
      tools = PrepareTools(plan);
      for (const std::string& notice : tools->notices)
        channel.Notice(notice);
    }
    return ApplyOne(plan, *tools, plan.pairs[job], channel);
  } catch (const AlreadyThere&) {
    if (!plan.options.isSkippingExisting)
      throw;
    return {0, 0, JobDone::CameMeanwhile};
  } catch (...) {
    throw CaughtFailure(ShownName(plan.pairs[job].input));
  }
}

} // namespace

ExitCode Apply(const ApplyOptions& options) {
  ApplyPlan plan = MakePlan(options);
  if (options.json && !plan.pairs.empty() && IsStandardOutput(plan.pairs[0].output.path))
    throw Failure(ExitCode::WrongUsage, JSON_AND_PICTURE);
  std::vector<ImagePair> skipped;
  if (options.isSkippingExisting)
    skipped = SkipExisting(plan);
  if (options.force || options.isUpdating)
    RefuseSharedFiles(plan.pairs, SharedFiles(plan));
  const int numProcessors = NumProcessors();
  const int numWorkers = static_cast<int>(std::min<size_t>(
      options.jobs > 0 ? options.jobs : numProcessors, std::max<size_t>(plan.pairs.size(), 1)));
  plan.threads = std::max(1, numProcessors / numWorkers);
  DrawTemporaryMark();

  Reporter reporter(plan);
  for (const auto& [name, why] : plan.failures)
    reporter.Failed(Failure(ExitCode::BadInput, name + ": " + why), {{"input", name}});
  for (const ImagePair& pair : skipped)
    reporter.Skipped(pair);
  std::optional<ApplyTools> tools; // each process fills its own copy
  WorkerPool pool;
  pool.numJobs = plan.pairs.size();
  pool.numWorkers = numWorkers;
  pool.maxSeconds = options.maxSeconds;
  pool.work = [&](size_t job, const JobChannel& channel) {
    return Work(plan, tools, job, channel);
  };
  pool.onProgress = [&](size_t job, double share) { reporter.Progress(job, share); };
  pool.onNotice = [&](const std::string& text) { reporter.Notice(text); };
  pool.onResult = [&](const JobResult& result) { reporter.Result(result); };
  pool.onDeath = [&](size_t job, pid_t worker) {
    unlink(TemporaryPath(plan.pairs[job].target, worker).c_str());
  };
  if (RunJobs(pool) == PoolEnd::Interrupted) {
    if (CanPrint(STDERR_FILENO))
      reporter.Notice("stopped");
    return ExitCode::Cancelled;
  }
  return reporter.Worst();
}

} // namespace limn
