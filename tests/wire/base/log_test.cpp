// Text of peers in log lines: it can neither look like a further line nor control a terminal.
#include "ipc/tolm_log.h"

#include <gtest/gtest.h>

#include <string>

#include "log_capture.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

std::string Logged(const std::string& text) {
    const LogCapture log;
    TOLM_LOG(ANDROID_LOG_WARN, "[tag]", "wrong type %s", text.c_str());
    const std::vector<LogLine> lines = log.Lines();
    return lines.size() == 1 ? lines[0].message : std::to_string(lines.size()) + " lines";
}

std::string LoggedDocument(const std::string& text) {
    const LogCapture log;
    TOLM_LOG_DOCUMENTS(ANDROID_LOG_WARN, "[tag]", "recv msg:%s, out_msg:%s in m_ipc_id(%x)", text.c_str(), "{}\n", 1);
    const std::vector<LogLine> lines = log.Lines();
    return lines.size() == 1 ? lines[0].message : std::to_string(lines.size()) + " lines";
}

TEST(Log, KeepsTextInAnyLanguage) {
    const std::string text = "K\xc3\xb6ln \xe2\x82\xac \xe6\x97\xa5 \xf0\x9f\x93\xba \\ \" ~";
    EXPECT_EQ(Logged(text), "wrong type " + text);
}

TEST(Log, EscapesLineBreaksAndControlCharacters) {
    EXPECT_EQ(Logged("a\n[tolm](a.cpp:1) f: b\r"), "wrong type a\\n[tolm](a.cpp:1) f: b\\x0d");
    EXPECT_EQ(Logged("\x1b[2J\t\x01\x7f"), "wrong type \\x1b[2J\\x09\\x01\\x7f");
    EXPECT_EQ(Logged("\xc2\x9b"
                     "2J\xc2\x80\xc2\xa0"),
              "wrong type \\xc2\\x9b2J\\xc2\\x80\xc2\xa0");
}

TEST(Log, EscapesInvalidUtf8) {
    EXPECT_EQ(Logged("\x9b"
                     "2J\xff\xc0\xaf\xe0\x80\xaf\xed\xa0\x80"),
              "wrong type \\x9b2J\\xff\\xc0\\xaf\\xe0\\x80\\xaf\\xed\\xa0\\x80");
    EXPECT_EQ(Logged("\xf4\x90\x80\x80\xf0\x80\x80\x80\xc3"),
              "wrong type \\xf4\\x90\\x80\\x80\\xf0\\x80\\x80\\x80\\xc3");
    EXPECT_EQ(Logged("\xe2\x82"), "wrong type \\xe2\\x82");
}

TEST(Log, KeepsTheLinesOfADocumentAndEscapesThoseOfAComment) {
    const std::string document = "{\n\t\"list\" : \n\t[\n\t\t1\n\t]\n}\n";
    EXPECT_EQ(LoggedDocument(document), "recv msg:" + document + ", out_msg:{}\n in m_ipc_id(1)");
    EXPECT_EQ(LoggedDocument("\n/*\n[ipc_vb] W fake\x1b[2J\nI*/\n{}"),
              "recv msg:\\n/*\\n[ipc_vb] W fake\\x1b[2J\\nI*/\n{}, out_msg:{}\n in m_ipc_id(1)");
}

TEST(Log, EscapesTheLinesOfTheSocketLayerOnStandardOutputToo) {
    const LogCapture log;
    const StdoutCapture out;
    TOLM_SOCKET_LOG(ANDROID_LOG_ERROR, "Connect error:%s", "\x1b[2J\nfake");
    EXPECT_EQ(log.Count(ANDROID_LOG_ERROR, "tolm_IPC", "Connect error:\\x1b[2J\\nfake"), 1) << log.Text();
    EXPECT_EQ(out.Text(), "tolm_IPC \"Connect error:\\x1b[2J\\nfake\"\n");
}

}  // namespace

}  // namespace hbbtv::test
