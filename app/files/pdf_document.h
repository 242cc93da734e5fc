// PDF files opened by the PDF library.
#pragma once

#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>

#include "app/files/errors.h"

namespace vorlane::files {

// A document of its own, which may be changed; one thread may use it at a time. The stream is
// closed with it, on a failure too. Throws DecodeError when the file is damaged or asks for a
// password.
std::unique_ptr<QPDF> OpenPdf(std::FILE* stream);

// Does a part of the work on a document. For files that contradict themselves the library throws
// whatever its containers and conversions throw, not only errors of its own: all become an Error
// with `words` before the library's. Our own errors pass, and so does a lack of memory.
template <typename Error, typename Work>
auto WithPdfErrors(const char* words, const Work& work) {
  try {
    return work();
  } catch (const DecodeError&) {
    throw;
  } catch (const FileError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const QPDFExc& error) {
    throw Error(words + error.getMessageDetail());
  } catch (const std::exception& error) {
    throw Error(std::string(words) + error.what());
  }
}

// Throws std::bad_alloc where memory ran out while the library read an object: it takes such an
// object for damaged and goes on without it.
void RefuseForgottenObjects(QPDF* pdf);

}  // namespace vorlane::files
