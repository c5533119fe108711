#include "worker_process.h"

#include "job_message.h"
#include "termination.h"

#include <chrono>
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace limn {
namespace {

using Clock = std::chrono::steady_clock;

// The command itself acts on the user's signals. A worker goes when the command asks it to, or when
// the command has died.
void TakeWorkerSignals(pid_t parent) {
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGHUP, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN); // a limit on file sizes is a failed write like any other
  std::signal(SIGPIPE, SIG_IGN); // and so is a pipe that nobody reads
  std::signal(SIGTERM, RemoveTemporaryAndLeave);
  std::signal(SIGALRM, SIG_DFL); // whatever the caller ignores
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent)
    _exit(static_cast<int>(ExitCode::Cancelled));
}

JobMessage DoJob(const WorkerPool& pool, size_t job, int socket) {
  JobMessage result;
  result.kind = JobMessage::Kind::Result;
  const auto start = Clock::now();
  alarm(pool.maxSeconds); // ends this process
  try {
    result.done = pool.work(job, JobChannel(socket));
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  } catch (...) {
    const Failure failure = CaughtFailure();
    result.code = failure.Code();
    result.SetText(failure.what());
  }
  alarm(0);
  return result;
}

} // namespace

void ServeJobs(const WorkerPool& pool, int socket, pid_t parent) {
  TakeWorkerSignals(parent);
  JobMessage order;
  while (Receive(socket, order, Waits::Yes) == Received::Message)
    if (!Send(socket, DoJob(pool, order.job, socket)))
      break;
  _exit(0);
}

void JobChannel::Progress(double share) const {
  JobMessage message;
  message.kind = JobMessage::Kind::Progress;
  message.share = share;
  Send(_socket, message);
}

void JobChannel::Notice(const std::string& text) const {
  JobMessage message;
  message.kind = JobMessage::Kind::Notice;
  message.SetText(text);
  Send(_socket, message);
}

} // namespace limn
