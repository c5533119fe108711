#include "LM_vectori2.h"

#include "LM_handles.h"

float LM_vectori2::Magnitude() const {
  return LM_Length(Floats());
}
