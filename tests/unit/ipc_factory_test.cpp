// The clients and servers that the factory creates, and its log lines.
#include <android/log.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "ipc/tolm_ipc_factory.h"
#include "log_capture.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

using tolm::TolmIpcFactory;

constexpr TolmIpcKeyId kKey = TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB;

TolmIpcFactory& Factory() {
    return *TolmIpcFactory::GetInstance();
}

TolmIpcType Type(int number) {
    return static_cast<TolmIpcType>(number);
}

// Expects that all lines are errors of the socket layer with these messages.
void ExpectErrors(const LogCapture& log, const std::vector<std::string>& messages, const char* function) {
    ASSERT_EQ(messages.size(), log.Lines().size()) << log.Text();
    for (size_t i = 0; i < messages.size(); ++i) {
        const LogLine line = log.Lines()[i];
        EXPECT_EQ(line.priority, ANDROID_LOG_ERROR);
        EXPECT_EQ(line.tag, "tolm_IPC");
        EXPECT_EQ(line.file, "tolm_ipc_factory.cpp");
        EXPECT_EQ(function, line.function);
        EXPECT_EQ(messages[i], line.message);
    }
}

TEST(IpcFactory, CreatesASocketClientAndLogsItAsAnError) {
    const ScratchDirectory directory;
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_NE(Factory().CreateIpcClient(kKey, 7, TOLM_IPC_TYPE_SOCKET), nullptr);
    ExpectErrors(log, {"Create socket client"}, "CreateIpcClient");
    EXPECT_EQ(out.Text(), "tolm_IPC \"Create socket client\"\n");
}

TEST(IpcFactory, CreatesASocketServerAndLogsItAsAnError) {
    const ScratchDirectory directory;
    tolm::TolmIpcServerDelegate delegate;
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_NE(Factory().CreateIpcServer(kKey, &delegate, TOLM_IPC_TYPE_SOCKET), nullptr);
    EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Create socket server"), 1) << log.Text();
    EXPECT_TRUE(out.HasLine("tolm_IPC \"Create socket server\""));
}

TEST(IpcFactory, DoesNotCreateAClientOfType0) {
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_EQ(Factory().CreateIpcClient(kKey, 7, Type(0)), nullptr);
    ExpectErrors(log, {"Create ipc client error"}, "CreateIpcClient");
    EXPECT_EQ(out.Text(), "tolm_IPC \"Create ipc client error\"\n");
}

TEST(IpcFactory, DoesNotCreateAServerOfType0) {
    tolm::TolmIpcServerDelegate delegate;
    const LogCapture log;
    const StdoutCapture out;
    EXPECT_EQ(Factory().CreateIpcServer(kKey, &delegate, Type(0)), nullptr);
    ExpectErrors(log, {"Create ipc server error"}, "CreateIpcServer");
    EXPECT_EQ(out.Text(), "tolm_IPC \"Create ipc server error\"\n");
}

TEST(IpcFactory, DoesNotCreateAClientOfAnotherTypeAndLogsTwice) {
    for (const int type : {2, 3, -1, 1000}) {
        const LogCapture log;
        const StdoutCapture out;
        EXPECT_EQ(Factory().CreateIpcClient(kKey, 7, Type(type)), nullptr);
        ExpectErrors(log, {"Create ipc client type error", "Create ipc client error"}, "CreateIpcClient");
        EXPECT_EQ(out.Text(), "tolm_IPC \"Create ipc client type error\"\ntolm_IPC \"Create ipc client error\"\n");
    }
}

TEST(IpcFactory, DoesNotCreateAServerOfAnotherTypeAndLogsTwice) {
    tolm::TolmIpcServerDelegate delegate;
    for (const int type : {2, 3, -1, 1000}) {
        const LogCapture log;
        const StdoutCapture out;
        EXPECT_EQ(Factory().CreateIpcServer(kKey, &delegate, Type(type)), nullptr);
        ExpectErrors(log, {"Create ipc server type error", "Create ipc server error"}, "CreateIpcServer");
        EXPECT_EQ(out.Text(), "tolm_IPC \"Create ipc server type error\"\ntolm_IPC \"Create ipc server error\"\n");
    }
}

TEST(IpcFactory, IsTheSameForAllThreads) {
    std::vector<TolmIpcFactory*> seen(8);
    std::vector<std::thread> threads;
    for (TolmIpcFactory*& instance : seen) {
        threads.emplace_back([&instance] { instance = TolmIpcFactory::GetInstance(); });
    }
    for (std::thread& thread : threads) thread.join();
    for (const TolmIpcFactory* instance : seen) EXPECT_EQ(seen[0], instance);
}

TEST(IpcClientBase, ReportsSuccessWithoutATransport) {
    tolm::TolmIpcClient client;
    std::vector<unsigned char> reply;
    EXPECT_TRUE(client.Send({1}));
    EXPECT_TRUE(client.SendSync({1}, reply));
    EXPECT_TRUE(reply.empty());
}

TEST(IpcServerDelegateBase, DoesNothing) {
    tolm::TolmIpcServerDelegate delegate;
    std::vector<unsigned char> reply;
    delegate.OnRecv({1}, 7);
    delegate.OnRecvSync({1}, reply, 7);
    EXPECT_TRUE(reply.empty());
    tolm::TolmIpcServer server;
    server.Start();
}

}  // namespace

}  // namespace hbbtv::test
