#include "apply.h"

#include "apply_one.h"
#include "atomic_file.h"
#include "image_shard.h"
#include "name_list.h"
#include "output_target.h"
#include "progress_bar.h"
#include "report.h"
#include "style_source.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <sched.h>
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

  void Notice(const std::string& text) {
    if (_plan.options.quiet)
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

private:
  void _Done(const JobResult& result) {
    const ImagePair& pair = _plan.pairs[result.job];
    const auto [width, height] = result.done;
    if (_plan.options.json) {
      PrintJson({{"input", pair.input},
                 {"output", pair.output.path},
                 {"size", {width, height}},
                 {"seconds", std::round(result.seconds * 1000) / 1000}});
    } else if (!_plan.options.quiet) {
      char figures[80];
      std::snprintf(figures, sizeof figures, " (%d × %d, %.2f s)", width, height, result.seconds);
      PrintLine(Printable(pair.input + " → " + pair.output.path) + figures);
    }
  }

  void _Failed(const JobResult& result) {
    const ImagePair& pair = _plan.pairs[result.job];
    const std::string sentence =
        result.hasDied ? pair.input + ": " + result.sentence : result.sentence;
    PrintProblem(sentence);
    if (_plan.options.json)
      PrintJson({{"input", pair.input},
                 {"output", pair.output.path},
                 {"error", sentence},
                 {"code", static_cast<int>(result.code)}});
    _worst = std::max(_worst, result.code);
  }

  const ApplyPlan& _plan;
  ProgressBar _bar;
  ExitCode _worst = ExitCode::Done;
};

// What to light, before any look at what is there already.
std::vector<ImagePair> Pairs(const ApplyOptions& options) {
  const Shard shard = ParseShard(options.shard);
  ImageNames names{options.images, {}};
  if (!options.listFile.empty())
    names.listed = ReadNameList(options.listFile, options.isListNul ? '\0' : '\n');
  return OfShard(
      ListImages(names, options.output, options.isRecursive ? Folders::Walk : Folders::Refuse),
      shard);
}

ApplyPlan MakePlan(const ApplyOptions& options) {
  ApplyPlan plan;
  plan.options = options;
  plan.area = ParseArea(options.area);
  NamedStyle named = FindStyle(options.style);
  for (const std::string& setting : options.settings)
    SetField(named.style, setting);
  plan.style = named.style;
  if (!named.warning.empty() && !options.quiet)
    PrintProblem(options.style + ": " + named.warning);
  // Missing ones are reported once, not for each image.
  if (!options.mask.empty())
    OpenRegularFile(options.mask);
  for (const std::string& channel : options.channels)
    OpenRegularFile(channel);
  plan.pairs = Pairs(options);
  for (const ImagePair& pair : plan.pairs) {
    try {
      plan.targets.push_back(ResolveTarget(pair.output.path));
    } catch (const Failure&) {
      plan.targets.push_back(pair.output.path); // that image fails when its turn comes
    }
  }
  return plan;
}

// Takes images whose output exists out of the plan, and reports them.
void SkipExisting(ApplyPlan& plan) {
  std::vector<ImagePair> pairs;
  std::vector<std::string> targets;
  for (size_t i = 0; i < plan.pairs.size(); ++i) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(plan.targets[i], error)) {
      pairs.push_back(std::move(plan.pairs[i]));
      targets.push_back(std::move(plan.targets[i]));
    } else if (plan.options.json) {
      PrintJson({{"input", plan.pairs[i].input},
                 {"output", plan.pairs[i].output.path},
                 {"skipped", true}});
    }
  }
  const size_t numSkipped = plan.pairs.size() - pairs.size();
  if (numSkipped > 0 && !plan.options.json && !plan.options.quiet)
    PrintProblem(std::to_string(numSkipped) + " of " + std::to_string(plan.pairs.size()) +
                 " images are skipped: their output is there already");
  plan.pairs = std::move(pairs);
  plan.targets = std::move(targets);
}

// Inside a worker.
JobDone Work(const ApplyPlan& plan, std::optional<ApplyTools>& tools, size_t job,
             const JobChannel& channel) {
  try {
    if (!tools)
      tools = PrepareTools(plan);
    if (job == 0)
      for (const std::string& notice : tools->notices)
        channel.Notice(notice);
    return ApplyOne(plan, *tools, job, channel);
  } catch (...) {
    throw CaughtFailure(plan.pairs[job].input);
  }
}

} // namespace

ExitCode Apply(const ApplyOptions& options) {
  ApplyPlan plan = MakePlan(options);
  if (options.isSkippingExisting)
    SkipExisting(plan);
  if (options.force) {
    std::vector<std::string> shared = options.channels;
    if (!options.mask.empty())
      shared.push_back(options.mask);
    RefuseSharedFiles(plan.pairs, plan.targets, shared);
  }
  const int numProcessors = NumProcessors();
  const int numWorkers = static_cast<int>(std::min<size_t>(
      options.jobs > 0 ? options.jobs : numProcessors, std::max<size_t>(plan.pairs.size(), 1)));
  plan.threads = std::max(1, numProcessors / numWorkers);
  DrawTemporaryMark();

  Reporter reporter(plan);
  std::optional<ApplyTools> tools; // each process fills its own copy
  WorkerPool pool;
  pool.numJobs = plan.pairs.size();
  pool.numWorkers = numWorkers;
  pool.maxSeconds = options.maxSeconds;
  pool.work = [&](size_t job, const JobChannel& channel) {
    return Work(plan, tools, job, channel);
  };
  pool.onProgress = [&](size_t job, double share) { reporter.Progress(job, share); };
  pool.onNotice = [&](size_t, const std::string& text) { reporter.Notice(text); };
  pool.onResult = [&](const JobResult& result) { reporter.Result(result); };
  pool.onDeath = [&](size_t job, pid_t worker) {
    unlink(TemporaryPath(plan.targets[job], worker).c_str());
  };
  if (RunJobs(pool) == PoolEnd::Interrupted) {
    if (CanPrint(STDERR_FILENO))
      reporter.Notice("stopped");
    return ExitCode::Cancelled;
  }
  return reporter.Worst();
}

} // namespace limn
