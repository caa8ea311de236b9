// The receivers of one endpoint, told apart by the port: the registry by itself, without messages from a socket.
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
    void TearDown() override { EXPECT_NE("", mOut.Text()); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
    TolmHbbtvIpcServerDelegate mDelegate{kKey};
    Receiver mFirst;
    Receiver mSecond;
    LogCapture mLog;
};

TEST_F(ServerDelegateRegistry, TellsReceiversApartByThePort) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(8, &mSecond);
    mDelegate.OnRecv({'a'}, 7);
    mDelegate.OnRecv({'b'}, 8);
    EXPECT_EQ((std::vector<std::string>{"7:a"}), mFirst.heard);
    EXPECT_EQ((std::vector<std::string>{"8:b"}), mSecond.heard);
}

TEST_F(ServerDelegateRegistry, GivesTheReceiversReply) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    std::vector<unsigned char> reply;
    mDelegate.OnRecvSync({'a'}, reply, 7);
    EXPECT_EQ((std::vector<unsigned char>{'y', 'e', 's'}), reply);
    EXPECT_EQ((std::vector<std::string>{"7:a"}), mFirst.heard);
}

TEST_F(ServerDelegateRegistry, WarnsOfAPortWithoutReceiver) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mLog.Clear();
    mDelegate.OnRecv({'a'}, 9);
    ASSERT_EQ(1u, mLog.Lines().size()) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "channel(32) port(9): no receiver")) << mLog.Text();
    EXPECT_EQ("tolm_hbbtv_ipc_server_delegate.cpp", mLog.Lines()[0].file);
    std::vector<unsigned char> reply;
    mDelegate.OnRecvSync({'a'}, reply, -1);
    EXPECT_TRUE(reply.empty());
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "channel(32) port(-1): no receiver")) << mLog.Text();
    EXPECT_TRUE(mFirst.heard.empty());
}

TEST_F(ServerDelegateRegistry, NeverCallsANullReceiver) {
    mDelegate.RegisterIpcServerDelegate(7, nullptr);
    EXPECT_EQ(1u, mDelegate.GetNum());
    std::vector<unsigned char> reply;
    mDelegate.OnRecv({'a'}, 7);
    mDelegate.OnRecvSync({'a'}, reply, 7);
    EXPECT_TRUE(reply.empty());
}

TEST_F(ServerDelegateRegistry, KeepsTheFirstReceiverOfAPort) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(7, &mSecond);
    EXPECT_EQ(1u, mDelegate.GetNum());
    mDelegate.OnRecv({'a'}, 7);
    EXPECT_EQ(1u, mFirst.heard.size());
    EXPECT_TRUE(mSecond.heard.empty());
    ASSERT_EQ(2u, mLog.Lines().size()) << mLog.Text();
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, "[ipc_base]", "ipc server start success in channel(32) port(7)"))
        << mLog.Text();
    // The blank at the end is part of the line.
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_ERROR, "[ipc_base]", "ipc server start in channel(32) port(7) repeatedly "))
        << mLog.Text();
}

TEST_F(ServerDelegateRegistry, TakesANewReceiverWhenTheFirstHasGone) {
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(1, mLog.Count(ANDROID_LOG_DEBUG, "[ipc_base]", "ipc server stop success in channel(32) port(7)"))
        << mLog.Text();
    mDelegate.RegisterIpcServerDelegate(7, &mSecond);
    mDelegate.OnRecv({'a'}, 7);
    EXPECT_TRUE(mFirst.heard.empty());
    EXPECT_EQ(1u, mSecond.heard.size());
}

TEST_F(ServerDelegateRegistry, IgnoresTheEndOfAPortThatIsNotThere) {
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(0u, mLog.Lines().size()) << mLog.Text();
    EXPECT_EQ(0u, mDelegate.GetNum());
}

TEST_F(ServerDelegateRegistry, CountsPorts) {
    EXPECT_EQ(0u, mDelegate.GetNum());
    mDelegate.RegisterIpcServerDelegate(7, &mFirst);
    mDelegate.RegisterIpcServerDelegate(8, &mFirst);
    EXPECT_EQ(2u, mDelegate.GetNum());
    mDelegate.UnRegisterIpcServerDelegate(7);
    EXPECT_EQ(1u, mDelegate.GetNum());
}

}  // namespace

}  // namespace hbbtv::test
