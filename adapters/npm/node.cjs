// The package for require().
exports.load = async (options) => (await import("./node.mjs")).load(options);
