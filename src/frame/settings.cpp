#include "frame/settings.h"

namespace vorlanepic {

Settings settings{};

}  // namespace vorlanepic
