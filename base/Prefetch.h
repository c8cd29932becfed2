#pragma once

namespace base {

/// Asks the processor to fetch the memory at an address, which need not be valid, into its caches.
///
/// GCC takes a function that does nothing but prefetch for one without any effect, and drops the
/// calls of it. The empty instruction, which may have one for all it knows, keeps them.
inline void prefetch(const void* address) {
    __builtin_prefetch(address);
    asm volatile("");
}

} // namespace base
