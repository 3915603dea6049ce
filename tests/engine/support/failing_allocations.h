// Lets a test make the engine's nothrow allocations fail on purpose, so the
// out-of-memory paths (result -2, nothing leaked, nothing half-built) can be
// exercised. Only the nothrow forms of new and new[] are affected, and only
// while a FailingAllocations object lives.
#ifndef TAMERISK_TESTS_FAILING_ALLOCATIONS_H
#define TAMERISK_TESTS_FAILING_ALLOCATIONS_H

#include <gtest/gtest.h>

class FailingAllocations {
public:
    // The first `successes` nothrow allocations succeed, every later one
    // fails.
    explicit FailingAllocations(long successes);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // How many nothrow allocations were refused so far.
    long Refused() const;
};

// Runs `operation` with the first 0, 1, 2, ... nothrow allocations
// succeeding, and after each run calls `check(refused)`, refused telling
// whether any allocation failed in that run. Stops after the first run that
// was refused nothing.
template <typename Operation, typename Check>
void FailEachAllocationInTurn(Operation operation, Check check)
{
    for (long successes = 0; successes < 100; ++successes) {
        long refused;
        {
            FailingAllocations failing(successes);
            operation();
            refused = failing.Refused();
        }
        check(refused != 0);
        if (refused == 0)
            return;
    }
    ADD_FAILURE() << "allocations were still refused after 100 runs";
}

#endif
