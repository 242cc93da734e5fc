#include "app/batch/decoder_choice.h"

#include <cstdio>
#include <string>

#include "app/batch/freed_memory.h"
#include "app/batch/printable_name.h"
#include "app/cage/cage.h"

namespace vorlane::batch {

std::unique_ptr<files::Decoders> DecodersFor(const BatchRequest& request) {
  KeepFreedMemory();  // before the decoders' processes are made, which take it over
  if (request.sandbox == Sandbox::kOff) return nullptr;
  static const files::OwnDecoders kDecoders;
  try {
    return std::make_unique<cage::Cage>(kDecoders, request.sandbox == Sandbox::kOn
                                                       ? files::HelperWalls::kAlways
                                                       : files::HelperWalls::kWherePossible);
  } catch (const cage::CageError& error) {
    if (request.sandbox == Sandbox::kOn) {
      throw files::UsageError(std::string("--sandbox on: the system does not allow it: ") +
                              error.what());
    }
    if (request.report.isVerbose) {
      (void)std::fprintf(stderr, "vorlane: decoding without a sandbox: %s\n",
                         Printable(error.what()).c_str());
    }
    return nullptr;
  }
}

}  // namespace vorlane::batch
