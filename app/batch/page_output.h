// Writes pages, copies of inputs and overlays to their files.
#pragma once

#include <string>

#include "app/batch/journal.h"
#include "app/batch/page_record.h"
#include "app/batch/run_context.h"
#include "app/files/picture_writer.h"

namespace vorlane::batch {

// Which file may be replaced: what the request allows and, where a run is resumed, what the journal
// shows to be its own; a file with the same bytes as the new one will do.
files::Replacing ReplacingFor(const RunContext& run, const JournalPages& before,
                              const std::string& path);

// The format that a file's name asks for; the plan has seen that it asks for one.
files::FileFormat FormatFor(const std::string& path);

// Makes the folder that a file of a folder or pattern is to stand in. Throws FileError.
void MakeFolderFor(const std::string& path);

// Writes a file of one page, which comes from `source`; null: from none. Throws FileError.
void WritePage(const std::string& path, files::EncodedPage page, files::Replacing replacing,
               const files::PictureFile* source);

// Copies a file byte for byte; does nothing when both are the same file. Throws FileError.
void CopyFile(const std::string& from, const std::string& to, files::Replacing replacing);

// Writes an overlay. Throws FileError.
void WritePicture(const std::string& path, const files::PixPtr& pix, files::Replacing replacing);

// Draws the page's overlay and names it in the record; a failure is noted there and does no harm.
void WriteOverlay(const std::string& path, const files::Page& page, const PageOutcome& outcome,
                  files::Replacing replacing, PageRecord* record);

}  // namespace vorlane::batch
