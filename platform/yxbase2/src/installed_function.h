#pragma once

// The one rule of the base library's replaceable functions (log sink, sleep hook): swapped as a
// whole under a lock, called outside it, and the replaced one handed back to the caller.

#include <memory>
#include <mutex>
#include <utility>

namespace yxbase2::system::detail {

/** Installs `function` in `slot` (an empty function empties the slot) and returns the function
 *  it replaced as it was installed, empty when the slot was empty. Returning the stored function
 *  itself, not a wrapper that forwards to it, keeps installing and removing exact: a helper
 *  that puts back what it was given restores the slot as it found it and can recognise its
 *  own function by type (std::function::target). */
template <class Function>
Function exchangeInstalled(std::mutex& mutex, std::shared_ptr<Function const>& slot,
                           Function function) {
    auto replacement = function ? std::make_shared<Function const>(std::move(function)) : nullptr;
    std::shared_ptr<Function const> previous;
    {
        std::lock_guard<std::mutex> lock(mutex);
        previous = std::exchange(slot, std::move(replacement));
    }
    return previous ? *previous : Function{};
}

/** The function installed in `slot` now, read under the lock; null when the slot is empty. */
template <class Function>
std::shared_ptr<Function const> installed(std::mutex& mutex,
                                          std::shared_ptr<Function const> const& slot) {
    std::lock_guard<std::mutex> lock(mutex);
    return slot;
}

}  // namespace yxbase2::system::detail
