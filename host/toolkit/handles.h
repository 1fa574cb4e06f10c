// handles.h: what stands behind the handles of toolkit.h. A handle is never given out twice, so one
// whose thing is gone stays unknown.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace uti::host {

template <class Thing>
class Handles {
public:
    void add(int32_t handle, std::unique_ptr<Thing> thing) { things_[handle] = std::move(thing); }

    Thing *find(int32_t handle) const {
        const auto found = things_.find(handle);
        return found == things_.end() ? nullptr : found->second.get();
    }
    // Gives the thing up; null when there is none.
    std::unique_ptr<Thing> take(int32_t handle) {
        const auto node = things_.extract(handle);
        return node ? std::move(node.mapped()) : nullptr;
    }

private:
    std::unordered_map<int32_t, std::unique_ptr<Thing>> things_;
};

} // namespace uti::host
