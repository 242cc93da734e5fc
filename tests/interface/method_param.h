// Parameters of a deskew-and-crop method that suit the drawn pages.
#pragma once

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

inline DeskewCropParam MethodParam(int32_t method) {
  return {nullptr, 0, method, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
}

}  // namespace vorlanepic::testing
