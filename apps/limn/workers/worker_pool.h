// Jobs done by forked processes, each of which does one job at a time: a job that crashes, or
// exhausts memory, fails alone.
#pragma once

#include "failure.h"

#include <cstddef>
#include <functional>
#include <string>
#include <sys/types.h>

namespace limn {

// What a job made: an image of that size. It goes from process to process as bytes, so that it has
// no padding.
struct JobDone {
  enum Skipped : int { No, CameMeanwhile, UpToDate };
  int width = 0;
  int height = 0;
  Skipped skipped = No; // else nothing was written, and why
};

// How one job ended. sentence: that of its failure, or, when its process died in the middle, what
// is known about that.
struct JobResult {
  size_t job = 0;
  ExitCode code = ExitCode::Done;
  JobDone done;
  double seconds = 0; // that it took, where it is Done
  std::string sentence;
  bool hasDied = false;
};

// What a running job can tell meanwhile, inside its process. Texts are cut to some 4000 bytes.
class JobChannel {
public:
  explicit JobChannel(int socket) : _socket(socket) {}
  void Progress(double share) const; // 0 … 1
  void Notice(const std::string& text) const;

private:
  int _socket;
};

struct WorkerPool {
  size_t numJobs = 0;
  int numWorkers = 1; // or as many as the system lets run
  // After which a job's process is ended, and the job has failed with BadInput. 0: never.
  unsigned maxSeconds = 0;
  // In the process. What it throws is the job's failure, as CaughtFailure has it.
  std::function<JobDone(size_t job, const JobChannel& channel)> work;
  // In the calling process, as news arrive.
  std::function<void(size_t job, double share)> onProgress;
  std::function<void(const std::string& text)> onNotice;
  std::function<void(const JobResult& result)> onResult;
  // In the calling process, when process `worker` died inside the job: clears away what it left.
  std::function<void(size_t job, pid_t worker)> onDeath;
};

enum class PoolEnd { AllDone, Interrupted };

// Runs all jobs. The calling process must have one thread. On SIGINT, SIGTERM or SIGHUP the
// processes are killed, onDeath is called for their jobs, and nothing more is started. Throws
// Failure(NoMemory) when not even one process can be started.
PoolEnd RunJobs(const WorkerPool& pool);

} // namespace limn
