// Files received for applications, in a directory next to the sockets. A file exists as long as it is referenced, the
// directory until the end.
#pragma once

#include <memory>
#include <string>

namespace hbbtv::sim {

class LocalFiles {
  public:
    // The destructor removes the file.
    struct File {
        File(std::string theDirectory, std::string thePath, size_t theSize, std::shared_ptr<size_t> theRoom);
        ~File();
        File(const File&) = delete;
        File& operator=(const File&) = delete;

        const std::string directory;
        const std::string path;
        const size_t size;

      private:
        std::shared_ptr<size_t> mRoom;
    };

    // The directory is created with the first file; files of an earlier simulator are then removed.
    explicit LocalFiles(const std::string& directory);
    ~LocalFiles();
    LocalFiles(const LocalFiles&) = delete;
    LocalFiles& operator=(const LocalFiles&) = delete;

    // Creates a file with a unique name that ends in `name`. Throws Refused.
    std::shared_ptr<const File> Put(const std::string& name, const std::string& bytes);

  private:
    void MakeDirectory();

    std::string mDirectory;
    std::shared_ptr<size_t> mRoom;  // bytes that may still be stored
    bool mMade = false;
    unsigned mCount = 0;
};

}  // namespace hbbtv::sim
