// GLib's locks are made of the system's bare calls, which the thread sanitizer does not know, in a
// library that it does not watch. Here they pass before its eyes on their way there, so that what
// libvips does under a lock is seen to be in order, and only what is not is reported.
#include <dlfcn.h>
#include <glib.h>

#define SEEN extern "C" __attribute__((visibility("default")))

SEEN void __tsan_acquire(void* address);
SEEN void __tsan_release(void* address);

namespace {

template <typename Function> Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

SEEN void g_mutex_lock(GMutex* mutex) {
  static const auto real = Real<void(GMutex*)>("g_mutex_lock");
  real(mutex);
  __tsan_acquire(mutex);
}

SEEN gboolean g_mutex_trylock(GMutex* mutex) {
  static const auto real = Real<gboolean(GMutex*)>("g_mutex_trylock");
  const gboolean locked = real(mutex);
  if (locked != 0)
    __tsan_acquire(mutex);
  return locked;
}

SEEN void g_mutex_unlock(GMutex* mutex) {
  static const auto real = Real<void(GMutex*)>("g_mutex_unlock");
  __tsan_release(mutex);
  real(mutex);
}

SEEN void g_cond_wait(GCond* condition, GMutex* mutex) {
  static const auto real = Real<void(GCond*, GMutex*)>("g_cond_wait");
  __tsan_release(mutex);
  real(condition, mutex);
  __tsan_acquire(mutex);
}

SEEN gboolean g_cond_wait_until(GCond* condition, GMutex* mutex, gint64 end) {
  static const auto real = Real<gboolean(GCond*, GMutex*, gint64)>("g_cond_wait_until");
  __tsan_release(mutex);
  const gboolean signalled = real(condition, mutex, end);
  __tsan_acquire(mutex);
  return signalled;
}
