#include "frame/settings.h"

namespace vorlanepic::frame {

Settings settings{};

}  // namespace vorlanepic::frame
