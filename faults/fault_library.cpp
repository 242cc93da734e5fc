// Stands between a program and the C library, linked before it or preloaded, and lets chosen calls
// fail as a system does that has run out of memory, threads, descriptors or disk. What runs before
// `main` and after it is left alone.
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <iterator>
#include <link.h>
#include <pthread.h>
#include <string_view>
#include <unistd.h>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/types.h>

#include "fault_record.h"

// NOLINTBEGIN(bugprone-reserved-identifier): what the C library calls its own
extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);
void* __libc_realloc(void* block, size_t bytes);
void* __libc_memalign(size_t alignment, size_t bytes);
void __libc_free(void* block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using vorlane::faults::Call;
using vorlane::faults::FaultRecord;
using vorlane::faults::Mode;

FaultRecord ownRecord{};
std::atomic<FaultRecord*> record{&ownRecord};
std::atomic<bool> isInMain{false};

// By number: the functions of the same names are the ones replaced here.
template <typename... Arguments>
long System(long number, Arguments... arguments) {
  return syscall(number, arguments...);
}

// Programs of others that the command starts are left alone.
bool IsOurs() { return std::string_view(program_invocation_short_name).starts_with("vorlane"); }

void OpenRecord() {
  const char* path = std::getenv("VORLANE_FAULTS");
  if (path == nullptr || !IsOurs()) return;
  const long handle = System(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
  const long mapped = System(SYS_mmap, nullptr, sizeof(FaultRecord), PROT_READ | PROT_WRITE,
                             MAP_SHARED, handle, 0L);
  if (handle < 0 || mapped == -1) std::abort();  // a run without its faults would prove nothing
  System(SYS_close, handle);
  record = reinterpret_cast<FaultRecord*>(mapped);
}

// Libraries that do not survive what is done here, so that nothing would be learnt of us:
// libseccomp 2.5 frees twice or loops when a filter finds no room, OpenSSL 3.0 uses locks that its
// beginning could not make. Both ask for little, and once.
constexpr std::string_view kSpared[] = {"/libseccomp.so", "/libcrypto.so"};

// Where their code lies.
struct Range {
  uintptr_t first;
  uintptr_t end;
};
Range spared[std::size(kSpared)];

int FindSpared(dl_phdr_info* library, size_t /*bytes*/, void* /*unused*/) {
  const std::string_view name = library->dlpi_name;
  for (size_t i = 0; i < std::size(kSpared); ++i) {
    if (name.find(kSpared[i]) == std::string_view::npos) continue;
    for (int part = 0; part < library->dlpi_phnum; ++part) {
      const ElfW(Phdr)& header = library->dlpi_phdr[part];
      if (header.p_type != PT_LOAD || (header.p_flags & PF_X) == 0) continue;
      const uintptr_t first = library->dlpi_addr + header.p_vaddr;
      spared[i] = {first, first + header.p_memsz};
    }
  }
  return 0;
}

bool IsSpared(const void* caller) {
  const auto from = reinterpret_cast<uintptr_t>(caller);
  for (const Range& range : spared) {
    if (from >= range.first && from < range.end) return true;
  }
  return false;
}

// Counts a call and tells whether it is to fail. `caller` is where the call returns to.
bool Strikes(Call call, size_t bytes = 0, const void* caller = nullptr) {
  FaultRecord& faults = *record;
  const Mode mode = faults.mode;
  if (mode == Mode::kIdle || !isInMain || IsSpared(caller)) return false;
  const int64_t place = faults.seen[static_cast<int32_t>(call)]++;
  const auto size = static_cast<int64_t>(bytes);
  for (int64_t old = faults.largest; size > old;) {
    if (faults.largest.compare_exchange_weak(old, size)) break;
  }
  const int64_t n = faults.n;
  const bool isChosen = mode == Mode::kLarger ? size > n : call == faults.call;
  const bool isItsTurn = mode != Mode::kCount && (mode == Mode::kOnly ? place == n : place >= n);
  if (!isChosen || (mode != Mode::kLarger && !isItsTurn)) return false;
  ++faults.struck;
  return true;
}

void* Counted(void* block) {
  if (block != nullptr && isInMain) ++record.load()->alive;
  return block;
}

void* NoMemory() {
  errno = ENOMEM;
  return nullptr;
}

int Fails(int error) {
  errno = error;
  return -1;
}

template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int OpenAt(int folder, const char* path, int flags, va_list rest) {
  const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  const mode_t rights = makesFile ? va_arg(rest, mode_t) : 0;
  if (Strikes(Call::kOpen)) return Fails(EMFILE);
  return static_cast<int>(System(SYS_openat, folder, path, flags, rights));
}

int (*realMain)(int, char**, char**) = nullptr;

int MainWithFaults(int argc, char** argv, char** environment) {
  dl_iterate_phdr(FindSpared, nullptr);
  isInMain = true;
  const int exit = realMain(argc, argv, environment);
  isInMain = false;
  return exit;
}

}  // namespace

extern "C" {
// What the header of the C library says of these functions differs from system to system.
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wmissing-attributes"
#pragma GCC visibility push(default)

FaultRecord* vorlane_fault_record() { return record; }

// NOLINTNEXTLINE(bugprone-reserved-identifier)
int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                      void (*fini)(), void (*loaderFini)(), void* stackEnd) {
  OpenRecord();
  realMain = main;
  return Next<decltype(&__libc_start_main)>("__libc_start_main")(MainWithFaults, argc, argv, init,
                                                                 fini, loaderFini, stackEnd);
}

void* malloc(size_t bytes) {
  return Strikes(Call::kMalloc, bytes, __builtin_return_address(0)) ? NoMemory()
                                                                    : Counted(__libc_malloc(bytes));
}
void* calloc(size_t count, size_t bytes) {
  return Strikes(Call::kCalloc, count * bytes, __builtin_return_address(0))
             ? NoMemory()
             : Counted(__libc_calloc(count, bytes));
}
void* realloc(void* block, size_t bytes) {
  if (Strikes(Call::kRealloc, bytes, __builtin_return_address(0))) return NoMemory();
  void* moved = __libc_realloc(block, bytes);
  if (block == nullptr) return Counted(moved);
  if (moved == nullptr && bytes == 0 && isInMain) --record.load()->alive;
  return moved;
}
void* memalign(size_t alignment, size_t bytes) {
  return Strikes(Call::kMalloc, bytes, __builtin_return_address(0))
             ? NoMemory()
             : Counted(__libc_memalign(alignment, bytes));
}
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }
int posix_memalign(void** block, size_t alignment, size_t bytes) {
  void* made = memalign(alignment, bytes);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}
void free(void* block) {
  if (block != nullptr && isInMain) --record.load()->alive;
  __libc_free(block);
}

void* mmap(void* address, size_t bytes, int protection, int flags, int handle, off_t offset) {
  if (Strikes(Call::kMap, bytes)) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return reinterpret_cast<void*>(
      System(SYS_mmap, address, bytes, protection, flags, handle, offset));
}
void* mmap64(void* address, size_t bytes, int protection, int flags, int handle, off_t offset) {
  return mmap(address, bytes, protection, flags, handle, offset);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* argument) {
  if (Strikes(Call::kThread)) return EAGAIN;
  return Next<decltype(&pthread_create)>("pthread_create")(thread, attributes, run, argument);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int handle = OpenAt(folder, path, flags, rest);
  va_end(rest);
  return handle;
}
int openat64(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int handle = OpenAt(folder, path, flags, rest);
  va_end(rest);
  return handle;
}
int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int handle = OpenAt(AT_FDCWD, path, flags, rest);
  va_end(rest);
  return handle;
}
int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int handle = OpenAt(AT_FDCWD, path, flags, rest);
  va_end(rest);
  return handle;
}
FILE* fopen(const char* path, const char* kind) {
  if (Strikes(Call::kOpen)) return static_cast<FILE*>((Fails(EMFILE), nullptr));
  return Next<decltype(&fopen)>("fopen")(path, kind);
}
FILE* fopen64(const char* path, const char* kind) { return fopen(path, kind); }
DIR* opendir(const char* path) {
  if (Strikes(Call::kOpen)) return static_cast<DIR*>((Fails(EMFILE), nullptr));
  return Next<decltype(&opendir)>("opendir")(path);
}

ssize_t write(int handle, const void* bytes, size_t count) {
  if (Strikes(Call::kWrite)) return Fails(ENOSPC);
  return System(SYS_write, handle, bytes, count);
}
ssize_t pwrite(int handle, const void* bytes, size_t count, off_t offset) {
  if (Strikes(Call::kWrite)) return Fails(ENOSPC);
  return System(SYS_pwrite64, handle, bytes, count, offset);
}
ssize_t pwrite64(int handle, const void* bytes, size_t count, off_t offset) {
  return pwrite(handle, bytes, count, offset);
}

int fsync(int handle) {
  return Strikes(Call::kSync) ? Fails(EIO) : static_cast<int>(System(SYS_fsync, handle));
}
int fdatasync(int handle) {
  return Strikes(Call::kSync) ? Fails(EIO) : static_cast<int>(System(SYS_fdatasync, handle));
}

int rename(const char* from, const char* to) {
  return Strikes(Call::kRename)
             ? Fails(EIO)
             : static_cast<int>(System(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  return Strikes(Call::kRename)
             ? Fails(EIO)
             : static_cast<int>(System(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  return Strikes(Call::kRename)
             ? Fails(EIO)
             : static_cast<int>(System(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

#pragma GCC visibility pop
}
