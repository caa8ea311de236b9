// A client process for the tests: "calling_client CALLERS FAMILIES" calls the first families of kFamilyCalls in turn,
// each call on its own thread. Prints "answered STATUS" for each, and ends when all have been answered.

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <thread>
#include <vector>

#include "family_calls.h"

int main(int argc, char** argv) {
    const int callers = argc > 2 ? std::atoi(argv[1]) : 0;
    const int families = argc > 2 ? std::atoi(argv[2]) : 0;
    if (families < 1 || families > static_cast<int>(std::size(hbbtv::test::kFamilyCalls))) return 2;
    std::vector<std::thread> threads;
    for (int i = 0; i < callers; ++i) {
        threads.emplace_back([call = hbbtv::test::kFamilyCalls[i % families]] {
            printf("answered %d\n", hbbtv::test::Make(call));
            fflush(stdout);
        });
    }
    for (std::thread& thread : threads) thread.join();
    return 0;
}
