// What a limn_settings holds.
#pragma once

#include "limn.h"

#include "LM_style.h"

#include <string>

struct limn_settings {
  LM_style style;
  std::string warning; // what reading it passed over, or nothing
};
