/* Compiles when the contract needs nothing but itself; fails when a type of it is not plain C. */
#include "CVFilterRecord.h"

CVFilterEntry TheEntry(CVFilterEntry entry) {
  return entry;
}
FilterRecord TheRecord(void) {
  FilterRecord record = {0};
  record.hostSignature = CV_HOST_SIGNATURE;
  return record;
}
