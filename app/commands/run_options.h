// Options that several commands share.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <CLI/CLI.hpp>

#include "app/batch/batch.h"
#include "app/commands/turn_report.h"
#include "app/services/verdict.h"

namespace vorlane::commands {

// What a command does once its options are read; returns an ExitCode.
using CommandRun = std::function<int()>;

// What is read, where it goes and how the run goes on, for commands that write pages.
void AddBatchOptions(CLI::App* app, batch::BatchRequest* request);

// The parts of AddBatchOptions that name the outputs, and the journal.
void AddOutputOptions(CLI::App* app, batch::BatchRequest* request);
void AddJournalOptions(CLI::App* app, batch::BatchRequest* request);

// --overlay-only, for commands whose pages may be left as they are.
void AddUnsureOverlayOption(CLI::App* app, batch::BatchRequest* request);

// --accept-doubtful.
void AddDoubtfulOption(CLI::App* app, TurnReport* report);

// The same for commands that only measure.
void AddMeasureOptions(CLI::App* app, batch::BatchRequest* request);

// The part of both that names the inputs, and the part that says how the run goes on.
void AddInputOptions(CLI::App* app, batch::BatchRequest* request);
void AddRunOptions(CLI::App* app, batch::BatchRequest* request);

// The part of AddRunOptions that changes nothing of what is made: jobs, memory and how much is
// said.
void AddWorkOptions(CLI::App* app, batch::BatchRequest* request);

// Completes a request when the command line is read: the command's name, and the SHA-256 of all
// options that decide what is written, with the bytes of a profile. Throws UsageError when options
// contradict each other.
void FinishRequest(const CLI::App& command, batch::BatchRequest* request);

// --threshold N and --dpi N, for commands that look for a reference bar.
void AddBarPageOptions(CLI::App* app, int32_t* threshold, int32_t* dpi);

// An option that takes one of a few words, each with its value.
using Choices = std::map<std::string, int32_t>;
void AddChoice(CLI::App* app, const char* name, int32_t* value, const Choices& choices,
               const char* meaning);

// --interpolation bicubic|bilinear|nearest, as the services count them.
inline constexpr const char* kInterpolationMeaning =
    "How pixels between pixels are sampled [bicubic]; 1-bit pages always take the nearest";
void AddInterpolationOption(CLI::App* app, int32_t* interpolation);

// --threshold N with 0 for the library's estimate, and --try-thresholds.
struct ThresholdOptions {
  int32_t threshold = -1;  // -1: the command's choice
  bool tryOthers = false;
};
void AddThresholdOptions(CLI::App* app, ThresholdOptions* options);

// A call with one threshold, judged.
using ThresholdCall = std::function<services::TurnOutcome(int32_t threshold)>;

// The outcome with the threshold asked for, or with `preferred` when none is, or, when that is not
// to be trusted and others may be tried, the best outcome over the thresholds that the page
// suggests.
services::TurnOutcome RunThresholds(const ThresholdOptions& options, int32_t preferred,
                                    const ImageRec& image, const ThresholdCall& call);

// Milliseconds that `call` takes.
double Timed(const std::function<void()>& call);

}  // namespace vorlane::commands
