#include "worker_pool.h"

#include "job_message.h"
#include "posix_file.h"
#include "report.h"
#include "worker_process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace limn {
namespace {

volatile sig_atomic_t interrupted = 0;
void NoteInterruption(int) {
  interrupted = 1;
}

// Takes the signals only while waiting for news or telling them; puts back what was before.
class Signals {
public:
  Signals() {
    sigemptyset(&_taken);
    struct sigaction action {};
    action.sa_handler = NoteInterruption;
    for (int i = 0; i < NUMBER; ++i) {
      sigaddset(&_taken, SIGNALS[i]);
      sigaction(SIGNALS[i], nullptr, &_before[i]);
      // A hang-up that was ignored at the start (nohup) stays ignored.
      if (_before[i].sa_handler != SIG_IGN)
        sigaction(SIGNALS[i], &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &_taken, &_maskBefore);
  }
  ~Signals() {
    for (int i = 0; i < NUMBER; ++i)
      sigaction(SIGNALS[i], &_before[i], nullptr);
    sigprocmask(SIG_SETMASK, &_maskBefore, nullptr);
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;
  const sigset_t& MaskBefore() const { return _maskBefore; }
  // Where the command may have to wait for whoever reads its output, a signal ends the waiting. One
  // that came before must not let it begin: what cannot be told at once is not told any more.
  template <class Telling> void Let(Telling tell) const {
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
      pollfd wait{output, POLLOUT, 0};
      while (interrupted == 0 && ppoll(&wait, 1, nullptr, &_maskBefore) < 0 && errno == EINTR) {
      }
      if (!CanPrint(output))
        return;
    }
    sigprocmask(SIG_SETMASK, &_maskBefore, nullptr);
    tell();
    sigprocmask(SIG_BLOCK, &_taken, nullptr);
  }

private:
  static constexpr int NUMBER = 3;
  static constexpr int SIGNALS[NUMBER] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction _before[NUMBER] {};
  sigset_t _taken{};
  sigset_t _maskBefore{};
};

struct Worker {
  pid_t process;
  Descriptor socket;
  size_t job;
};

class Pool {
public:
  explicit Pool(const WorkerPool& pool) : _pool(pool), _numWorkers(pool.numWorkers) {}
  ~Pool() { _KillAll(); }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

  PoolEnd Run() {
    while (interrupted == 0) {
      while (_next < _pool.numJobs && static_cast<int>(_workers.size()) < _numWorkers)
        _Start();
      if (_workers.empty())
        return PoolEnd::AllDone;
      _Wait();
    }
    _KillAll();
    return PoolEnd::Interrupted;
  }

private:
  void _Start() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
      return _DoWithFewer(errno);
    Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    std::fflush(nullptr); // or the worker's copy of the buffers could be printed too
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process < 0)
      return _DoWithFewer(errno);
    if (process == 0) {
      // Only its own end: the others' must show their end when the command is gone.
      for (const Worker& other : _workers)
        close(other.socket.Number());
      close(ours.Number());
      ServeJobs(_pool, theirs.Number(), parent);
    }
    _workers.push_back({process, std::move(ours), 0});
    _Assign(_workers.back());
  }

  // Those that run do the jobs, if there is one.
  void _DoWithFewer(int error) {
    if (_workers.empty())
      throw Failure(ExitCode::NoMemory, "cannot start a process: " + SystemReason(error));
    _numWorkers = static_cast<int>(_workers.size());
  }

  void _Assign(Worker& worker) {
    JobMessage order;
    order.job = worker.job = _next++;
    Send(worker.socket.Number(), order); // a worker that has died is noticed by its closed socket
  }

  void _Wait() {
    std::vector<pollfd> waits;
    for (const Worker& worker : _workers)
      waits.push_back({worker.socket.Number(), POLLIN, 0});
    if (ppoll(waits.data(), waits.size(), nullptr, &_signals.MaskBefore()) < 0)
      return;
    for (size_t i = waits.size(); i-- > 0;)
      if (waits[i].revents != 0 && !_TakeNews(_workers[i]))
        _workers.erase(_workers.begin() + static_cast<ptrdiff_t>(i));
  }

  // False when the worker is gone.
  bool _TakeNews(Worker& worker) {
    JobMessage news;
    for (;;) {
      switch (Receive(worker.socket.Number(), news, Waits::No)) {
      case Received::Nothing:
        return true;
      case Received::End:
        _Bury(worker);
        return false;
      case Received::Message:
        break;
      }
      const std::string text(news.text, news.length);
      if (news.kind == JobMessage::Kind::Progress)
        _signals.Let([&] { _pool.onProgress(worker.job, news.share); });
      else if (news.kind == JobMessage::Kind::Notice)
        _signals.Let([&] { _pool.onNotice(text); });
      else if (!_Finish(worker, {worker.job, news.code, news.done, news.seconds, text, false}))
        return false;
    }
  }

  // Gives the worker its next job, or lets it go and answers false.
  bool _Finish(Worker& worker, const JobResult& result) {
    _signals.Let([&] { _pool.onResult(result); });
    if (_next < _pool.numJobs && interrupted == 0) {
      _Assign(worker);
      return true;
    }
    worker.socket = Descriptor();
    waitpid(worker.process, nullptr, 0);
    return false;
  }

  void _Bury(Worker& worker) {
    int status = 0;
    waitpid(worker.process, &status, 0);
    _pool.onDeath(worker.job, worker.process);
    ExitCode code = ExitCode::Refused;
    std::string sentence = "its process ended unexpectedly";
    if (WIFEXITED(status) && WEXITSTATUS(status) == static_cast<int>(ExitCode::NoMemory)) {
      code = ExitCode::NoMemory;
      sentence = "not enough memory";
    } else if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
      code = ExitCode::BadInput;
      sentence = "takes longer than the " + std::to_string(_pool.maxSeconds) + " s that it may";
    } else if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) {
      code = ExitCode::NoMemory;
      sentence = "its process was killed, as happens when memory runs out";
    } else if (WIFSIGNALED(status)) {
      sentence = "its process crashed (signal " + std::to_string(WTERMSIG(status)) + ")";
    }
    _signals.Let([&] { _pool.onResult({worker.job, code, {}, 0, sentence, true}); });
  }

  void _KillAll() {
    for (const Worker& worker : _workers)
      kill(worker.process, SIGKILL);
    for (const Worker& worker : _workers) {
      waitpid(worker.process, nullptr, 0);
      _pool.onDeath(worker.job, worker.process);
    }
    _workers.clear();
  }

  const Signals _signals;
  const WorkerPool& _pool;
  int _numWorkers; // at most at a time
  std::vector<Worker> _workers;
  size_t _next = 0;
};

} // namespace

PoolEnd RunJobs(const WorkerPool& pool) {
  return Pool(pool).Run();
}

} // namespace limn
