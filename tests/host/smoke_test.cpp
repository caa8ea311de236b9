#include <gtest/gtest.h>
#include <chrono>
#include "child_process.h"
#include "scratch_directory.h"
#include "workshop.h"
using namespace hbbtv::test;
TEST(Smoke, Works) {
    ScratchDirectory d;
    ChildProcess p({HOST_TEST_PEER, "serve", "default", "2"});
    ASSERT_TRUE(p.WaitForOutput("ready"));
    sp<IWorkshop> w = IWorkshop::getService();
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(int32_t(w->pid()), p.Pid());
    auto t0 = std::chrono::steady_clock::now();
    for (int i = 0; i < 20000; ++i) {
        uint32_t r = w->holding();
        (void)r;
    }
    auto t1 = std::chrono::steady_clock::now();
    printf("%.2f us\n", std::chrono::duration<double, std::micro>(t1 - t0).count() / 20000);
    hidl_vec<Item> in{MakeItem(1), MakeItem(2), MakeItem(3)};
    bool called = false;
    EXPECT_TRUE(w->items(in, [&](const hidl_vec<Item>& out) {
                     called = true;
                     EXPECT_EQ(out, in);
                 }).isOk());
    EXPECT_TRUE(called);
    sp<Bouncer> b = new Bouncer;
    sp<IBouncer> rb = w->bouncer();
    EXPECT_EQ(uint32_t(rb->bounce(20, b)), 20u);
    struct R : android::hardware::hidl_death_recipient {
        std::atomic<int> n{0};
        void serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) override { n++; }
    };
    sp<R> r = new R;
    EXPECT_TRUE(bool(w->linkToDeath(r, 1)));
    p.Kill();
    EXPECT_TRUE(WaitFor([&] { return r->n == 1; }));
}
