// Where the television puts files that it has received for applications: a directory of its own beside its sockets. A
// file is there for as long as somebody holds it, the directory until the end.
#pragma once

#include <memory>
#include <string>

namespace hbbtv::sim {

class LocalFiles {
  public:
    // What is in it is removed when it goes.
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

    // The directory is made with the first file. What an earlier simulator left in it is removed then.
    explicit LocalFiles(const std::string& directory);
    ~LocalFiles();
    LocalFiles(const LocalFiles&) = delete;
    LocalFiles& operator=(const LocalFiles&) = delete;

    // Under a name of its own that ends in `name`. Throws Refused.
    std::shared_ptr<const File> Put(const std::string& name, const std::string& bytes);

  private:
    void MakeDirectory();

    std::string mDirectory;
    std::shared_ptr<size_t> mRoom;  // bytes that may still come
    bool mMade = false;
    unsigned mCount = 0;
};

}  // namespace hbbtv::sim
