// File descriptors that a process sends to another with a message, or has received with one. Closed when they are
// destroyed.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace android::hardware::host {

class Descriptors {
  public:
    // The limit for one message.
    static constexpr size_t kMost = 8;

    Descriptors() = default;
    ~Descriptors() { Close(); }
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;
    Descriptors(Descriptors&& other) noexcept : mFds(std::move(other.mFds)) { other.mFds.clear(); }
    Descriptors& operator=(Descriptors&& other) noexcept;

    size_t Size() const { return mFds.size(); }
    const int& operator[](size_t index) const { return mFds[index]; }

    // Takes ownership of a descriptor.
    void Add(int fd) { mFds.push_back(fd); }

    // Adds a copy of a descriptor. Returns whether it could be copied.
    bool AddCopyOf(int fd);

    // Removes the first descriptors and returns them. There must be as many.
    Descriptors TakeFirst(size_t count);

    // Closes all.
    void Close();

  private:
    std::vector<int> mFds;
};

}  // namespace android::hardware::host
