// Lets a test make the engine's nothrow allocations fail on purpose, so the
// out-of-memory paths (result -2, nothing leaked, nothing half-built) can be
// exercised. Only the nothrow forms of new and new[] are affected, and only
// while a FailingAllocations object lives.
#ifndef TAMERISK_TESTS_FAILING_ALLOCATIONS_H
#define TAMERISK_TESTS_FAILING_ALLOCATIONS_H

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

#endif
