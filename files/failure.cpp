#include "failure.h"

#include <new>

namespace limn {

Failure CaughtFailure(const std::string& file) {
  const std::string subject = file.empty() ? "" : file + ": ";
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::bad_alloc&) {
    return {ExitCode::NoMemory, subject + "not enough memory"};
  } catch (const std::exception& error) {
    return {ExitCode::Refused, subject + error.what()};
  }
}

} // namespace limn
