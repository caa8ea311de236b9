// The receivers of one endpoint, selected by the port: the registry on its own, without sockets.
#include <android/log.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ipc/src/tolm_hbbtv_ipc_server_delegate.h"
#include "log_capture.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;  // 50, 32 in hexadecimal

class Receiver : public tolm::TolmIpcServerDelegate {
  public:
    void OnRecv(const std::vector<unsigned char>& msg, int port) override {
        heard.push_back(std::to_string(port) + ":" + std::string(msg.begin(), msg.end()));
    }

    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override {
        OnRecv(msg, port);
        reply = {'y', 'e', 's'};
    }

    std::vector<std::string> heard;
};

class ServerDelegateRegistry : public testing::Test {
  protected:
    void TearDown() override { EXPECT_NE(mOut.Text(), ""); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    TolmHbbtvIpcServerDelegate mDelegate{kKey};
    Receiver mFirst;
    Receiver mSecond;
    LogCapture mLog;
};

TEST_F(ServerDelegateRegistry, SelectsReceiversByThePort) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(8, &mSecond);
    mDelegate.OnRecv({'a'}, 7);
    mDelegate.OnRecv({'b'}, 8);
    EXPECT_EQ(mFirst.heard, (std::vector<std::string>{"7:a"}));
    EXPECT_EQ(mSecond.heard, (std::vector<std::string>{"8:b"}));
}

TEST_F(ServerDelegateRegistry, ReturnsTheReceiversReply) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    std::vector<unsigned char> reply;
    mDelegate.OnRecvSync({'a'}, reply, 7);
    EXPECT_EQ(reply, (std::vector<unsigned char>{'y', 'e', 's'}));
    EXPECT_EQ(mFirst.heard, (std::vector<std::string>{"7:a"}));
}

TEST_F(ServerDelegateRegistry, WarnsOfAPortWithoutAReceiver) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mLog.Clear();
    mDelegate.OnRecv({'a'}, 9);
    ASSERT_EQ(mLog.Lines().size(), 1u) << mLog.Text();
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "channel(32) port(9): no receiver"), 1) << mLog.Text();
    EXPECT_EQ(mLog.Lines()[0].file, "tolm_hbbtv_ipc_server_delegate.cpp");
    std::vector<unsigned char> reply;
    mDelegate.OnRecvSync({'a'}, reply, -1);
    EXPECT_TRUE(reply.empty());
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "channel(32) port(-1): no receiver"), 1) << mLog.Text();
    EXPECT_TRUE(mFirst.heard.empty());
}

TEST_F(ServerDelegateRegistry, NeverCallsANullReceiver) {
    mDelegate.RegisterIpcServerDelegate(7, nullptr);
    EXPECT_EQ(mDelegate.GetNum(), 1u);
    std::vector<unsigned char> reply;
    mDelegate.OnRecv({'a'}, 7);
    mDelegate.OnRecvSync({'a'}, reply, 7);
    EXPECT_TRUE(reply.empty());
}

TEST_F(ServerDelegateRegistry, KeepsTheFirstReceiverOfAPort) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(7, &mSecond);
    EXPECT_EQ(mDelegate.GetNum(), 1u);
    mDelegate.OnRecv({'a'}, 7);
    EXPECT_EQ(mFirst.heard.size(), 1u);
    EXPECT_TRUE(mSecond.heard.empty());
    ASSERT_EQ(mLog.Lines().size(), 2u) << mLog.Text();
    EXPECT_EQ(mLog.Count(ANDROID_LOG_DEBUG, "[ipc_base]", "ipc server start success in channel(32) port(7)"), 1)
        << mLog.Text();
    // The trailing blank is part of the line.
    EXPECT_EQ(mLog.Count(ANDROID_LOG_ERROR, "[ipc_base]", "ipc server start in channel(32) port(7) repeatedly "), 1)
        << mLog.Text();
}

TEST_F(ServerDelegateRegistry, AcceptsANewReceiverAfterTheFirstIsRemoved) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_DEBUG, "[ipc_base]", "ipc server stop success in channel(32) port(7)"), 1)
        << mLog.Text();
    mDelegate.RegisterIpcServerDelegate(7, &mSecond);
    mDelegate.OnRecv({'a'}, 7);
    EXPECT_TRUE(mFirst.heard.empty());
    EXPECT_EQ(mSecond.heard.size(), 1u);
}

TEST_F(ServerDelegateRegistry, IgnoresTheRemovalOfAnUnknownPort) {
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(mLog.Lines().size(), 0u) << mLog.Text();
    EXPECT_EQ(mDelegate.GetNum(), 0u);
}

TEST_F(ServerDelegateRegistry, CountsPorts) {
    EXPECT_EQ(mDelegate.GetNum(), 0u);
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(8, &mFirst);
    EXPECT_EQ(mDelegate.GetNum(), 2u);
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(mDelegate.GetNum(), 1u);
}

}  // namespace

}  // namespace hbbtv::test
