// hbbtvctl show: recordings that are whole, damaged, long, or not recordings at all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "build_kind.h"
#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kSample = HBBTV_SOURCE_DIR "/examples/traffic/slow_channel_change.ndjson";

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class Show : public Alone {
  protected:
    // Writes a recording with this many records, by repeating one.
    std::string Long(size_t count) const {
        const std::vector<std::string> sample = Lines(ReadFile(kSample));
        const std::string path = mDirectory / (std::to_string(count) + ".ndjson");
        std::ofstream file(path);
        file << sample[0] << "\n";
        for (size_t i = 0; i < count; ++i) file << sample[2 + i % 2 * 2] << "\n";
        return path;
    }

    // Returns the largest memory of the command in KiB.
    static long MemoryOf(const std::vector<std::string>& arguments) {
        const pid_t child = fork();
        if (child == 0) {
            std::vector<char*> words{const_cast<char*>(HBBTVCTL_PROGRAM)};
            for (const std::string& word : arguments) words.push_back(const_cast<char*>(word.c_str()));
            words.push_back(nullptr);
            if (freopen("/dev/null", "w", stdout) != nullptr) execv(words[0], words.data());
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        EXPECT_EQ(wait4(child, &status, 0, &usage), child);
        EXPECT_EQ(status, 0);
        return usage.ru_maxrss;
    }
};

TEST_F(Show, PrintsTheSameFromAFileAndFromStandardInput) {
    const FinishedRun file = Ctl({"show", kSample});
    EXPECT_EQ(file.exit, 0) << file.Text();
    EXPECT_EQ(Lines(file.output).size(), 19u);
    EXPECT_EQ(CtlWithInput({"show", "-"}, ReadFile(kSample)).output, file.output);
}

TEST_F(Show, PrintsRecordsThatAreARecordingAgain) {
    const std::string path = mDirectory / "copy.ndjson";
    EXPECT_EQ(Ctl({"show", kSample, "--record", path}).exit, 0);
    EXPECT_EQ(ReadFile(path), ReadFile(kSample));
    EXPECT_EQ(Ctl({"show", path, "--json"}).output, ReadFile(kSample).substr(ReadFile(kSample).find('\n') + 1));
    const FinishedRun again = Ctl({"show", kSample, "--record", path});
    EXPECT_EQ(again.exit, 2);
    EXPECT_THAT(again.errors, HasSubstr("exists: remove it, or choose another name"));
}

TEST_F(Show, LetsNothingThroughThatTheFilterDoesNotName) {
    for (const char* form : {"", "--json", "--stats", "--slow", "--ladder"}) {
        std::vector<std::string> words{"show", kSample, "--filter", "op:GetSerialNumber"};
        if (*form != '\0') words.push_back(form);
        const FinishedRun run = Ctl(words);
        EXPECT_THAT(run.output, HasSubstr("GetSerialNumber")) << form;
        EXPECT_THAT(run.output, testing::Not(HasSubstr("SetChannel"))) << form;
    }
}

TEST_F(Show, WritesTheChartAsAPicture) {
    const std::string path = mDirectory / "chart.svg";
    EXPECT_EQ(Ctl({"show", kSample, "--ladder", "--svg", path}).exit, 0);
    const FinishedRun parsed =
        RunToEnd({"python3", "-c",
                  "import sys, xml.etree.ElementTree as t\n"
                  "n = '{http://www.w3.org/2000/svg}'\n"
                  "root = t.parse(sys.argv[1]).getroot()\n"
                  "print(root.tag == n + 'svg', sum('SetChannel' in (e.text or '') for e in root.iter(n + 'text')))\n",
                  path});
    EXPECT_EQ(parsed.output, "True 1\n") << parsed.errors;
}

TEST_F(Show, ReadsWhatCanBeReadAndNamesTheRest) {
    const std::string path = mDirectory / "damaged.ndjson";
    const std::vector<std::string> sample = Lines(ReadFile(kSample));
    WriteFile(path, sample[0] + "\n" + sample[2] + "\n11-22 12:47:25.000 D/x: a line of a log\n{\"number\":3}\n\n" +
                        std::string(17u << 20, 'x') + "\n" + sample[4] + "\n" +
                        sample[6].substr(0, sample[6].size() / 2));
    const FinishedRun run = Ctl({"show", path});
    EXPECT_EQ(run.exit, 0);
    EXPECT_EQ(Lines(run.output).size(), 2u) << run.output;
    EXPECT_EQ(Lines(run.errors).size(), 4u) << run.errors;
    EXPECT_THAT(run.errors, HasSubstr(path + ":3: not valid JSON: column 3"));
    EXPECT_THAT(run.errors, HasSubstr(path + ":4: \"kind\" is missing; skipped\n"));
    EXPECT_THAT(run.errors, HasSubstr(path + ":6: longer than 16 MiB; skipped\n"));
    EXPECT_THAT(run.errors, HasSubstr(path + ":8: cut: the file ends in this line; skipped\n"));
}

TEST_F(Show, ReadsRecordingsThatWerePutTogether) {
    const std::string path = mDirectory / "both.ndjson";
    WriteFile(path, ReadFile(kSample) + ReadFile(kSample));
    const FinishedRun run = Ctl({"show", path});
    EXPECT_EQ(Lines(run.output).size(), 38u);
    EXPECT_EQ(run.errors, "hbbtvctl: " + path + ":21: another recording begins; skipped\n");
}

TEST_F(Show, CountsTheLinesThatItDoesNotName) {
    const std::string path = mDirectory / "damaged.ndjson";
    std::string text = Lines(ReadFile(kSample))[0] + "\n";
    for (int i = 0; i < 300; ++i) text += "{}\n";
    WriteFile(path, text);
    const FinishedRun run = Ctl({"show", path, "--stats"});
    EXPECT_EQ(Lines(run.errors).size(), 11u);
    EXPECT_THAT(run.errors, EndsWith("hbbtvctl: 290 further lines were skipped\n"));
}

TEST_F(Show, RefusesJsonOfAFormThatHasNone) {
    for (const char* form : {"--slow", "--ladder", "--svg=x", "--record=x", "--pcapng=x", "--html=x"}) {
        const FinishedRun run = Ctl({"show", kSample, "--json", form});
        EXPECT_EQ(run.exit, 2) << form;
        EXPECT_THAT(run.errors, HasSubstr(" excludes ")) << form;
    }
}

TEST_F(Show, RefusesWhatIsNotARecording) {
    const auto problem = [this](const std::string& text) {
        const std::string path = mDirectory / "file";
        WriteFile(path, text);
        const FinishedRun run = Ctl({"show", path});
        EXPECT_EQ(run.exit, 2) << text;
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, StartsWith("hbbtvctl: " + path + " is ")) << text;
        return run.errors;
    };
    EXPECT_THAT(problem(""), HasSubstr("not a recording: it is empty"));
    EXPECT_THAT(problem("\n"), HasSubstr("not a recording: line 1"));
    EXPECT_THAT(problem("{}\n"), HasSubstr("line 1 has no \"recording\""));
    EXPECT_THAT(problem("{\"recording\":2}\n"), HasSubstr("a recording of version 2; this program reads version 1"));
    EXPECT_THAT(problem(std::string("\x7f"
                                    "ELF\0\1\x1b[2J",
                                    10)),
                testing::Not(HasSubstr("\x1b")));
    EXPECT_THAT(problem(std::string(17u << 20, '[')), HasSubstr("line 1 is "));
    EXPECT_EQ(Ctl({"show", mDirectory / "absent"}).exit, 2);
    EXPECT_THAT(Ctl({"show", mDirectory.Path()}).errors, HasSubstr("Is a directory"));
}

// Sanitizers keep what was freed, and are slow.
TEST_F(Show, NeedsTheSameMemoryForALongRecording) {
    const std::string small = Long(2000);
    const std::string large = Long(kSanitized ? 4000 : 100000);
    const long allowed = kSanitized ? 64 << 10 : 2048;
    for (const std::vector<std::string>& form :
         {std::vector<std::string>{"--stats"}, {}, {"--slow"}, {"--redact"}, {"--filter", "erste"}, {"--json"}}) {
        std::vector<std::string> words{"show", small};
        words.insert(words.end(), form.begin(), form.end());
        const long before = MemoryOf(words);
        words[1] = large;
        EXPECT_LT(MemoryOf(words), before + allowed) << (form.empty() ? "lines" : form[0]);
    }
}

// They need all records in their order. As JSON values, these would take three times the size of the file.
TEST_F(Show, KeepsRecordsAsTextWhereItNeedsAllOfThem) {
    const size_t count = kSanitized ? 4000 : 60000;
    const std::string small = Long(10);
    const std::string large = Long(count);
    const auto size = static_cast<long>(std::filesystem::file_size(large) >> 10);
    const long allowed = size * 2 + (kSanitized ? 160 << 10 : 8 << 10);
    for (const std::vector<std::string>& form : {std::vector<std::string>{"show", "", "--walk", "/dev/null"},
                                                 {"replay", "", "--as", "platform", "--for", "1ms"}}) {
        std::vector<std::string> words = form;
        words[1] = small;
        const long before = MemoryOf(words);
        words[1] = large;
        EXPECT_LT(MemoryOf(words), before + allowed) << form[0];
    }
}

TEST_F(Show, EndsWithItsReader) {
    const FinishedRun run =
        RunToEnd({"bash", "-c",
                  std::string("set -o pipefail; '") + HBBTVCTL_PROGRAM + "' show '" + Long(100000) + "' | head -1"});
    EXPECT_EQ(Lines(run.output).size(), 1u);
    EXPECT_EQ(run.errors, "");
}

}  // namespace

}  // namespace hbbtv::test
