// The relay between two ends that share no code with it: bytes, connections, files.
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include "common/failure.h"
#include "common/local_socket.h"
#include "running_relay.h"

namespace hbbtv::traffic {
namespace {

std::set<std::string> FilesIn(const std::string& directory) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

TEST_F(RelayTest, PassesOnRequestsAndRepliesAndRecordsThem) {
    const FakePlatform platform(kChannel, R"({"ret":0,"name":"arte"})");
    RunningRelay relay(Here());
    EXPECT_EQ(Ask(R"({"c_handle":"0x1","method":13,"type":12})"), R"({"ret":0,"name":"arte"})");
    ASSERT_TRUE(relay.WaitForExchanges(1));
    const Record record = relay.Exchanges()[0];
    EXPECT_EQ(record.operation, "GetName");
    EXPECT_EQ(record.library.pid, getpid());
    EXPECT_EQ(record.platform.pid, getpid());
    EXPECT_EQ(record.library.name, "traffic_tests");
}

// The receiver runs before the call that has passed the message on returns, on a machine with one processor always.
TEST_F(RelayTest, RecordsTheTimesAtWhichMessagesArriveAndNotThoseAfterTheirReceivers) {
    constexpr size_t kExchanges = 200;
    std::vector<uint64_t> received;  // of the platform's thread until Ask() returns
    const FakePlatform platform(kChannel, [&received](const test::Frame&) -> std::optional<std::string> {
        received.push_back(TimeStamp().Monotonic());
        return "{}";
    });
    RunningRelay relay(Here());
    std::vector<uint64_t> asked;
    std::vector<uint64_t> answered;
    for (size_t i = 0; i < kExchanges; ++i) {
        asked.push_back(TimeStamp().Monotonic());
        ASSERT_EQ(Ask(R"({"c_handle":"0x1","method":13,"type":12})"), "{}");
        answered.push_back(TimeStamp().Monotonic());
    }
    ASSERT_TRUE(relay.WaitForExchanges(kExchanges));
    for (size_t i = 0; i < kExchanges; ++i) {
        const Record record = relay.Exchanges()[i];
        EXPECT_GE(record.time.Monotonic(), asked[i]);
        EXPECT_LE(record.time.Monotonic(), received[i]) << i;
        EXPECT_LE(record.time.Monotonic() + *record.duration, answered[i]) << i;
    }
}

TEST_F(RelayTest, FilesAreAsBeforeAtTheEnd) {
    const FakePlatform platform(kChannel, "{}");
    chmod((directory / kChannel).c_str(), 0750);
    const ino_t inode = InodeOf(directory / kChannel);
    const std::set<std::string> files = FilesIn(directory.Path());
    RunningRelay relay(Here());
    EXPECT_NE(InodeOf(directory / kChannel), inode);
    EXPECT_EQ(InodeOf(directory / "service_plugin_to_hbbtv_vb_chn.relay"), inode);
    struct stat status {};
    stat((directory / kChannel).c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0750u) << "who could not connect still cannot";
    chmod((directory / kChannel).c_str(), 0777);  // as the owner does after it has begun to listen
    relay.Stop();
    EXPECT_EQ(InodeOf(directory / kChannel), inode);
    EXPECT_EQ(FilesIn(directory.Path()), files);
    stat((directory / kChannel).c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0777u);
    EXPECT_EQ(Ask("{}"), "{}");
}

TEST_F(RelayTest, PassesOnAnyBytesUnchangedAndInOrder) {
    RawListener platform(directory / "service_of_another_family");
    RunningRelay relay(Here(), platform);
    RawConnection caller = Connect("service_of_another_family");
    RawConnection server = platform.Accept();
    std::mt19937 random(7);
    std::string bytes;
    for (int i = 0; i < 100000; ++i) bytes += static_cast<char>(random());
    EXPECT_TRUE(caller.Write(bytes));
    EXPECT_EQ(server.Read(bytes.size()) == bytes, true);
    EXPECT_TRUE(server.Write(bytes));
    EXPECT_EQ(caller.Read(bytes.size()) == bytes, true);
    EXPECT_TRUE(caller.Write(FrameBytes(test::kRequest, 1, "{}").substr(0, 13)));
    EXPECT_EQ(server.Read(13).size(), 13u) << "a part of a message is not held";
}

TEST_F(RelayTest, PassesOnAHalfClosedConnection) {
    RawListener platform(directory / kChannel);
    RunningRelay relay(Here(), platform);
    RawConnection caller = Connect(kChannel);
    RawConnection server = platform.Accept();
    caller.Write("question");
    shutdown(caller.Fd(), SHUT_WR);
    EXPECT_EQ(server.Read(8), "question");
    EXPECT_TRUE(server.PeerCloses()) << "the end of the bytes";
    EXPECT_TRUE(server.Write("answer"));
    EXPECT_EQ(caller.Read(6), "answer");
    server.Close();
    EXPECT_TRUE(caller.PeerCloses());
    EXPECT_TRUE(relay.WaitForNote("by the platform"));
}

TEST_F(RelayTest, PassesOnAClosedConnectionWithTheBytesBeforeIt) {
    RawListener platform(directory / kChannel);
    RunningRelay relay(Here(), platform);
    RawConnection caller = Connect(kChannel);
    RawConnection server = platform.Accept();
    server.Write("last words");
    server.Close();
    EXPECT_EQ(caller.Read(10), "last words");
    EXPECT_TRUE(caller.PeerCloses());
    RawConnection other = Connect(kChannel);
    RawConnection its = platform.Accept();
    other.Close();
    EXPECT_TRUE(its.PeerCloses());
    EXPECT_TRUE(WaitFor([&] { return !its.Write("to no reader"); })) << "as if it were connected to the caller";
}

TEST_F(RelayTest, KeepsOnlyAChunkForAReceiverThatDoesNotRead) {
    RawListener platform(directory / kChannel);
    RunningRelay relay(Here(), platform);
    RawConnection caller = Connect(kChannel);
    RawConnection server = platform.Accept();
    constexpr size_t kAll = 16u << 20;
    std::string bytes(kAll, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 >> 8);
    size_t sent = 0;
    const auto fill = [&] {
        const ssize_t count = send(caller.Fd(), bytes.data() + sent, bytes.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count > 0) sent += static_cast<size_t>(count);
        return count <= 0;
    };
    // Until nothing is taken for a while.
    const auto stuck = [&] {
        const size_t before = sent;
        return fill() && !WaitFor([&] { return !fill() || sent > before; }, std::chrono::milliseconds(200));
    };
    ASSERT_TRUE(WaitFor(stuck));
    EXPECT_LT(sent, 2u << 20) << "the sender has to wait for the receiver";
    std::thread writer([&] { caller.Write(bytes.substr(sent)); });
    EXPECT_EQ(server.Read(kAll) == bytes, true);
    writer.join();
}

TEST_F(RelayTest, TakesSocketsThatAppearLaterAndThoseOfARestart) {
    RunningRelay relay(Here());
    for (int i = 0; i < 3; ++i) {
        auto platform = std::make_unique<FakePlatform>(kChannel, R"({"ret":0})");
        ASSERT_TRUE(Taken(kChannel));
        EXPECT_EQ(Ask("{}"), R"({"ret":0})");
        if (i == 0) unlink((directory / kChannel).c_str());  // or it leaves the file, and the next one replaces it
        platform.reset();
        unlink((directory / kChannel).c_str());
        ASSERT_TRUE(GivenBack(kChannel));
    }
    EXPECT_TRUE(relay.WaitForExchanges(3));
}

TEST_F(RelayTest, ASocketWithoutAProcessStaysAsItIs) {
    { RawListener ended(directory / kChannel); }
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    (directory / kChannel).copy(address.sun_path, sizeof(address.sun_path) - 1);
    unlink(address.sun_path);
    ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    const ino_t inode = InodeOf(directory / kChannel);
    RunningRelay relay(Here());
    EXPECT_EQ(InodeOf(directory / kChannel), inode);
    ASSERT_EQ(listen(fd, 1), 0);
    EXPECT_TRUE(Taken(kChannel)) << "as soon as it is served";
    close(fd);
}

TEST_F(RelayTest, LeavesOtherFamiliesAndTheLibrarysOwnEndsAlone) {
    const FakePlatform platform(kChannel, "{}");
    const FakePlatform other("service_plugin_to_hbbtv_vb", "{}");
    const FakePlatform end("service_plugin_to_hbbtv_vb_port_7", "{}");
    RelaySettings settings = Here();
    settings.sockets = {kChannel, "service_plugin_to_hbbtv_vb_port_7"};
    const RunningRelay relay(settings);
    EXPECT_EQ(relay.Of().Sockets(), std::set<std::string>{kChannel});
}

TEST_F(RelayTest, StandsBetweenTwoDirectories) {
    const std::string library = directory / "library";
    mkdir(library.c_str(), 0777);
    FakePlatform platform(kChannel, R"({"ret":0})");
    RelaySettings settings = Here();
    settings.directory = library;
    settings.platform = directory.Path();
    const std::set<std::string> files = FilesIn(directory.Path());
    {
        RunningRelay relay(settings);
        RawConnection connection = RawConnection::To(library + "/" + kChannel);
        connection.Write(FrameBytes(test::kRequest, 2, "{}"));
        EXPECT_EQ(connection.ReadFrame()->payload, R"({"ret":0})");
        RawListener events(library + "/" + kEvents);
        ASSERT_TRUE(WaitFor([&] { return InodeOf(directory / kEvents) != 0; }));
        RawConnection event = Connect(kEvents);
        events.Accept();  // by which the relay has found out who serves the socket
        RawConnection receiver = events.Accept();
        event.Write(FrameBytes(test::kOneWay, 7, "{}"));
        EXPECT_EQ(receiver.ReadFrame()->payload, "{}");
    }
    EXPECT_EQ(FilesIn(directory.Path()), files);
    EXPECT_EQ(FilesIn(library), std::set<std::string>{});
}

// The library creates its socket for events just before it sends the first request of a family, and a platform may send
// an event at once.
TEST_F(RelayTest, ASocketForEventsIsThereBeforeThePlatformHasTheRequestThatCausesThem) {
    const std::string library = directory / "library";
    mkdir(library.c_str(), 0777);
    RawListener platform(directory / kChannel);
    RelaySettings settings = Here();
    settings.directory = library;
    settings.platform = directory.Path();
    RunningRelay relay(settings, platform);
    for (int i = 0; i < 50; ++i) {
        const std::string name = "service_hbbtv_to_plugin_" + std::to_string(i);
        const std::string path = library + "/" + name;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        const Descriptor events(socket(AF_UNIX, SOCK_STREAM, 0));
        ASSERT_EQ(bind(events.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        // With this connection, the relay has seen the file, which no process serves yet.
        const RawConnection before = RawConnection::To(library + "/" + kChannel);
        const RawConnection its = platform.Accept();
        ASSERT_EQ(listen(events.Get(), 10), 0);
        const RawConnection caller = RawConnection::To(library + "/" + kChannel);
        const RawConnection server = platform.Accept();
        const Descriptor event(ConnectTo(directory / name));
        ASSERT_GE(event.Get(), 0) << i;
    }
}

TEST_F(RelayTest, TheSecondRelayOfADirectoryNamesTheFirst) {
    const RunningRelay relay(Here());
    try {
        const Relay second(Here(), [](const Record&) {});
        FAIL() << "two relays";
    } catch (const Failure& e) {
        EXPECT_EQ(e.what(), "test (" + std::to_string(getpid()) + ") already passes on the sockets in " +
                                directory.Path() + ": only one can");
        EXPECT_EQ(e.Code(), kUnavailable);
    }
}

TEST_F(RelayTest, AnOpenRequestIsKnownToOtherProgramsAndEndsBeforeTheRelay) {
    RawListener platform(directory / kChannel);
    RunningRelay relay(Here(), platform);
    RawConnection caller = Connect(kChannel);
    RawConnection server = platform.Accept();
    caller.Write(FrameBytes(test::kRequest, 2, R"({"c_handle":"0x1","method":13,"type":12})"));
    ASSERT_TRUE(WaitFor([&] { return relay.Of().Open().size() == 1; }));
    const auto answer = AskRelay(directory.Path());
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)["open"][0]["operation"].asString(), "GetName");
    EXPECT_EQ((*answer)["open"][0]["platform"]["pid"].asInt(), getpid());
    EXPECT_EQ((*answer)["sockets"][0].asString(), kChannel);
    std::thread end([&] { relay.Stop(); });
    ASSERT_TRUE(GivenBack(kChannel));
    server.Write(FrameBytes(test::kReply, 2, R"({"ret":0})"));
    EXPECT_EQ(caller.ReadFrame()->payload, R"({"ret":0})");
    end.join();
    EXPECT_EQ(relay.Exchanges().at(0).status, 0);
}

TEST_F(RelayTest, ConnectionsFromBeforeAreNamedOrBroken) {
    RawListener platform(directory / kChannel);
    RawConnection caller = Connect(kChannel);
    RawConnection server = platform.Accept();
    {
        const RunningRelay relay(Here(), platform);
        EXPECT_TRUE(relay.WaitForNote("traffic_tests (" + std::to_string(getpid()) +
                                      ") has 1 connection from before, not seen here; --break ends them"));
        caller.Write("still there");
        EXPECT_EQ(server.Read(11), "still there");
    }
    RelaySettings settings = Here();
    settings.breaks = true;
    const RunningRelay relay(settings);
    EXPECT_TRUE(relay.WaitForNote("ended 1 connection of traffic_tests"));
    EXPECT_TRUE(caller.PeerCloses());
    EXPECT_TRUE(server.PeerCloses());
}

// Needs root, as the other tests that change the user.
TEST_F(RelayTest, AnotherUserCannotHaveSocketsRestored) {
    constexpr uid_t kOther = 4711;
    const std::string file = directory / "hbbtvctl-relay.json";
    const auto plant = [&] {
        { RawListener ended(directory / kChannel); }
        std::ofstream(file) << R"({"moved":true,"process":1,"program":"a friend"})";
        ASSERT_EQ(chown(file.c_str(), kOther, kOther), 0);
    };
    const RawListener planted(directory / "service_plugin_to_hbbtv_vb_chn.relay");
    const ino_t inode = InodeOf(directory / "service_plugin_to_hbbtv_vb_chn.relay");
    plant();
    EXPECT_EQ(LookForRelay(directory.Path()).problem, file + " belongs to another user: remove it");
    EXPECT_THROW(Relay(Here(), [](const Record&) {}), Failure);
    unlink(file.c_str());
    { const RunningRelay relay(Here()); }
    EXPECT_NE(InodeOf(directory / kChannel), inode);
}

}  // namespace
}  // namespace hbbtv::traffic
