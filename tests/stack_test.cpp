// Every export called the way a 32-bit x86 host may call it: its calling convention keeps the stack
// only 4-byte aligned. Each export, entered with the stack pointer at each such misalignment, must
// agree with the scalar form on random lines and must not fault (an aligned vector spill to a
// misaligned stack slot would); the library realigns the stack itself where it needs alignment.
#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "host/check.h"
#include "qxpixlib.h"

namespace qx::test {
namespace {

// Calls fn(args[0], ..., args[n - 1]) (cdecl, one 32-bit word per argument) with the stack pointer
// at `entry` mod 16 when fn's first instruction runs. (Linux's i386 ABI keeps it at 12 there;
// 32-bit Windows promises only a multiple of 4.)
__attribute__((naked, noinline)) void call_with_stack_at(std::uint32_t /*entry*/, qx_entry /*fn*/,
                                                         const std::uint32_t* /*args*/,
                                                         std::uint32_t /*n*/) {
  asm(R"(
    pushl %ebp
    movl  %esp, %ebp
    pushl %esi
    pushl %edi
    movl  20(%ebp), %ecx        # n
    movl  16(%ebp), %esi        # args
    leal  -64(%esp), %eax       # room below the saved registers...
    leal  (,%ecx,4), %edx
    subl  %edx, %eax            # ...for n argument words
    andl  $-16, %eax
    movl  8(%ebp), %edx
    addl  $4, %edx              # esp at the call: entry + 4 (the call pushes 4 bytes)
    andl  $15, %edx
    addl  %edx, %eax
    movl  %eax, %esp
    movl  %eax, %edi
    cld
    rep movsl                   # the arguments, first at the lowest address
    call  *12(%ebp)
    leal  -8(%ebp), %esp
    popl  %edi
    popl  %esi
    popl  %ebp
    ret
  )");
}

// Stores the stack pointer at its entry through its one argument.
__attribute__((naked, noinline)) void stack_pointer_probe(std::uint32_t* /*at*/) {
  asm(R"(
    movl  4(%esp), %eax
    movl  %esp, (%eax)
    ret
  )");
}

std::uint32_t stack_at_entry;  // for the calls below

template <class T>
std::uint32_t word(T v) {
  if constexpr (std::is_pointer_v<T>)
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(v));
  else
    return static_cast<std::uint32_t>(v);
}

// Export F with its own argument list, called through call_with_stack_at.
template <auto F>
struct Shifted;
template <class... A, void (*F)(A...)>
struct Shifted<F> {
  static void call(A... a) {
    const std::uint32_t words[] = {word(a)..., 0};
    call_with_stack_at(stack_at_entry, reinterpret_cast<qx_entry>(F), words, sizeof...(A));
  }
};

qx_entry resolve_shifted(const char* name, void*) {
#define QX_SHIFTED(export_name, shape) \
  {#export_name, reinterpret_cast<qx_entry>(&Shifted<export_name>::call)},
  static const struct {
    const char* name;
    qx_entry fn;
  } table[] = {QX_EXPORTS(QX_SHIFTED)};
#undef QX_SHIFTED
  for (const auto& t : table)
    if (std::string_view(t.name) == name) return t.fn;
  return nullptr;
}

TEST(Stack, EveryExportOnAFourByteAlignedStack) {
  for (std::uint32_t entry : {4u, 8u, 0u}) {
    std::uint32_t seen = 0;
    const std::uint32_t probe_args[] = {word(&seen)};
    call_with_stack_at(entry, reinterpret_cast<qx_entry>(&stack_pointer_probe), probe_args, 1);
    ASSERT_EQ(seen % 16, entry);
    stack_at_entry = entry;
    EXPECT_EQ(qx_check_exports(resolve_shifted, nullptr), 0)
        << "stack pointer " << entry << " mod 16 at entry";
  }
}

}  // namespace
}  // namespace qx::test
