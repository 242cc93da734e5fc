#include "app/walls/call_filter.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <seccomp.h>
#include <system_error>
#include <unistd.h>

#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>

namespace vorlane::walls {
namespace {

using Context = std::unique_ptr<void, void (*)(scmp_filter_ctx)>;

// Those of other processors are passed over by the library.
constexpr int kDecoderCalls[] = {
    // Reading what is open, and messages.
    SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(lseek), SCMP_SYS(_llseek), SCMP_SYS(recvmsg),
    SCMP_SYS(sendmsg), SCMP_SYS(close),
    // Memory.
    SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise),
    // Locks, clocks and the number of processors, as the C library asks for them.
    SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(sched_yield), SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_gettime64), SCMP_SYS(gettimeofday), SCMP_SYS(time), SCMP_SYS(getrandom),
    SCMP_SYS(sched_getaffinity), SCMP_SYS(sysinfo), SCMP_SYS(restart_syscall),
    // The end: exit, abort.
    SCMP_SYS(exit), SCMP_SYS(exit_group), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn),
    SCMP_SYS(getpid), SCMP_SYS(gettid)};

constexpr int kMappingCalls[] = {SCMP_SYS(mmap), SCMP_SYS(mmap2), SCMP_SYS(mprotect)};

constexpr int kDeniedToHelpers[] = {SCMP_SYS(socket),
                                    SCMP_SYS(socketpair),
                                    SCMP_SYS(socketcall),
                                    SCMP_SYS(connect),
                                    SCMP_SYS(bind),
                                    SCMP_SYS(listen),
                                    SCMP_SYS(ptrace),
                                    SCMP_SYS(process_vm_readv),
                                    SCMP_SYS(process_vm_writev),
                                    SCMP_SYS(pidfd_getfd),
                                    SCMP_SYS(kcmp),
                                    SCMP_SYS(mount),
                                    SCMP_SYS(umount2),
                                    SCMP_SYS(pivot_root),
                                    SCMP_SYS(unshare),
                                    SCMP_SYS(setns),
                                    SCMP_SYS(bpf),
                                    SCMP_SYS(perf_event_open),
                                    SCMP_SYS(userfaultfd),
                                    SCMP_SYS(io_uring_setup),
                                    SCMP_SYS(keyctl),
                                    SCMP_SYS(add_key),
                                    SCMP_SYS(request_key),
                                    SCMP_SYS(kexec_load),
                                    SCMP_SYS(init_module),
                                    SCMP_SYS(finit_module),
                                    SCMP_SYS(reboot)};

// The library tells errors as negative numbers.
void Check(int result) {
  if (result < 0) throw std::system_error(-result, std::system_category(), "the call filter");
}

Context NewContext(uint32_t otherwise) {
  Context context(seccomp_init(otherwise), seccomp_release);
  if (!context) throw std::bad_alloc();
  return context;
}

// The library writes a program into a file: here a pipe, which takes far longer ones.
std::vector<sock_filter> ProgramOf(const Context& context) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) Check(-errno);
  const int result = seccomp_export_bpf(context.get(), ends[1]);
  (void)::close(ends[1]);
  std::vector<sock_filter> program(4096);
  const ssize_t got = ::read(ends[0], program.data(), program.size() * sizeof(sock_filter));
  const int error = errno;
  (void)::close(ends[0]);
  Check(result);
  if (got < 0) Check(-error);
  program.resize(static_cast<size_t>(got) / sizeof(sock_filter));
  return program;
}

}  // namespace

CallFilter CallFilter::ForDecoders() {
  const Context context = NewContext(SCMP_ACT_ERRNO(EPERM));
  for (const int call : kDecoderCalls) {
    Check(seccomp_rule_add(context.get(), SCMP_ACT_ALLOW, call, 0));
  }
  for (const int call : kMappingCalls) {
    Check(seccomp_rule_add(context.get(), SCMP_ACT_ALLOW, call, 1,
                           SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)));
  }
  // A signal to itself alone, as abort sends it; no other process has its number.
  const auto self = static_cast<scmp_datum_t>(::getpid());
  Check(seccomp_rule_add(context.get(), SCMP_ACT_ALLOW, SCMP_SYS(tgkill), 1,
                         SCMP_A0(SCMP_CMP_EQ, self, 0)));
  return CallFilter(ProgramOf(context));
}

CallFilter CallFilter::ForHelpers() {
  const Context context = NewContext(SCMP_ACT_ALLOW);
  for (const int call : kDeniedToHelpers) {
    Check(seccomp_rule_add(context.get(), SCMP_ACT_ERRNO(EPERM), call, 0));
  }
  return CallFilter(ProgramOf(context));
}

int CallFilter::Apply() const noexcept {
  const sock_fprog program = {static_cast<unsigned short>(program_.size()),
                              const_cast<sock_filter*>(program_.data())};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return errno;
  return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0 ? 0 : errno;
}

}  // namespace vorlane::walls
