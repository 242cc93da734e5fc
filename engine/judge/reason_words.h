// The published names and words of reasons and evidence.
#pragma once

#include "engine/judge/finding.h"

namespace vorlane::judge {

struct ReasonWords {
  const char* name;   // stable, for programs: "print-off-paper"
  const char* words;  // for people: "the print lies off the paper"
  const char* unit;   // what ReasonReport::value counts: "degrees", "share", "sides"; "" for none
};

// Every code has words; a value that is no code gives those of kNone.
const ReasonWords& WordsOf(Reason reason);

// "top", "right", "bottom", "left", "print", "bar", "vote".
const char* NameOf(EvidenceKind kind);

// "refused", "doubtful", "likely", "sure".
const char* NameOf(Confidence confidence);

}  // namespace vorlane::judge
