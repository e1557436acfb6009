// Test support: the chip model's walk of a replication id, and a write
// observer that keeps every walk it made while an operation ran.
#ifndef TIDE_TEST_SIM_MCC_H
#define TIDE_TEST_SIM_MCC_H

#include <tide/sim.h>

#include <functional>
#include <set>
#include <vector>

namespace tide::test {

// What the chip makes of a root: how the walk ended, and the keys and
// leaves of the copies in chain order.
struct McWalk {
    uint32_t end = TIDE_SIM_MCC_ROOT_INVALID;
    std::vector<uint32_t> keys;
    std::vector<uint32_t> leaves;
    uint32_t invalid_edits = 0; // copies whose egress edit is not valid

    std::set<uint32_t> key_set() const { return {keys.begin(), keys.end()}; }
};

inline McWalk mc_walk(uint32_t chip, uint32_t mrt)
{
    static tide_sim_mcc_copy copies[2048];
    McWalk w;
    uint32_t count = 0;
    if (tide_sim_mcc_walk(chip, mrt, copies, 2048, &count, &w.end) != 0) {
        w.end = ~0u;
        return w;
    }
    for (uint32_t i = 0; i < count; i++) {
        w.keys.push_back(copies[i].key);
        w.leaves.push_back(copies[i].leaf);
        w.invalid_edits += copies[i].valid == 0 ? 1 : 0;
    }
    return w;
}

// Runs `check(write)` after every register write of chip 0 while it
// lives.
class WriteObserver {
public:
    explicit WriteObserver(std::function<void(const tide_sim_write &)> check) : check_(std::move(check))
    {
        tide_sim_write_observer_set(0, &WriteObserver::_call, this);
    }
    ~WriteObserver() { tide_sim_write_observer_set(0, nullptr, nullptr); }
    WriteObserver(const WriteObserver &) = delete;
    WriteObserver &operator=(const WriteObserver &) = delete;
    uint64_t writes() const { return writes_; }

private:
    static void _call(uint32_t, const tide_sim_write *w, void *user)
    {
        auto *self = static_cast<WriteObserver *>(user);
        self->writes_++;
        self->check_(*w);
    }
    std::function<void(const tide_sim_write &)> check_;
    uint64_t writes_ = 0;
};

} // namespace tide::test

#endif // TIDE_TEST_SIM_MCC_H
