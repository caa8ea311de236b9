#include "traffic/report/ladder.h"

#include <algorithm>

#include "common/failure.h"
#include "common/text/printable.h"
#include "common/text/utf8.h"
#include "traffic/view/line.h"
#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

constexpr uint64_t kPause = 1000000;  // from here on, a row shows how long nothing happened
constexpr size_t kTime = 15;
constexpr size_t kMostColumns = 8;

// Returns the number of characters.
size_t Width(const std::string& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); }));
}

// Returns at most `most` characters.
std::string Cut(const std::string& text, size_t most) {
    if (Width(text) <= most) return text;
    std::string cut;
    size_t width = 0;
    for (const char c : text) {
        if (!IsContinuation(c) && ++width + 3 > most) break;
        cut += c;
    }
    return cut + "...";
}

std::string Padded(std::string text, size_t width, char with) {
    const size_t actual = Width(text);
    if (actual < width) text.append(width - actual, with);
    return text;
}

std::string Arrow(const std::string& text, size_t width, bool right) {
    const std::string shown = text.empty() ? "" : " " + Cut(text, width - 5) + " ";
    return right ? Padded("-" + shown, width - 1, '-') + ">" : "<" + Padded("-" + shown, width - 1, '-');
}

std::string Xml(const std::string& text) {
    std::string escaped;
    for (const char c : Printable(ValidUtf8(text))) {
        switch (c) {
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '&':
                escaped += "&amp;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string PauseText(uint64_t microseconds) {
    return "... " + DurationText(microseconds) + " ...";
}

constexpr size_t kColumn = 420;
constexpr size_t kLeft = 150;
constexpr size_t kRow = 26;

const char* const kStyle =
    "<style>svg{background:#fff;color:#1b1f24;font:12px ui-monospace,monospace}text{fill:currentColor}"
    "line{stroke:#8a939d}.m line{stroke:currentColor}.f line{stroke:#c62828}.f text{fill:#c62828}.p{fill:#6b7480}"
    "@media(prefers-color-scheme:dark){svg{background:#14171a;color:#e6e9ec}.f line{stroke:#ff7b72}"
    ".f text{fill:#ff7b72}.p{fill:#9aa4ae}}</style>\n"
    "<defs><marker id=\"a\" viewBox=\"0 0 8 8\" refX=\"8\" refY=\"4\" markerWidth=\"8\" markerHeight=\"8\" "
    "orient=\"auto\"><path d=\"M0 0L8 4L0 8z\" fill=\"context-stroke\"/></marker></defs>\n";

std::string TextAt(size_t x, size_t y, const std::string& text, const std::string& more = "") {
    return "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\"" + more + ">" + Xml(text) + "</text>";
}

std::string LineFrom(size_t x1, size_t y1, size_t x2, size_t y2, const std::string& more = "") {
    return "<line x1=\"" + std::to_string(x1) + "\" y1=\"" + std::to_string(y1) + "\" x2=\"" + std::to_string(x2) +
           "\" y2=\"" + std::to_string(y2) + "\"" + more + "/>";
}

}  // namespace

size_t Ladder::ColumnOf(const Peer& peer, bool platform) {
    const std::string role = platform ? "platform" : "library";
    std::string name = role;
    if (peer.pid != 0) name = (peer.name.empty() ? role : peer.name) + " (" + std::to_string(peer.pid) + ")";
    auto found = std::find(mColumns.begin(), mColumns.end(), name);
    if (found == mColumns.end()) {
        if (mColumns.size() >= kMostColumns) name = "others";
        found = std::find(mColumns.begin(), mColumns.end(), name);
    }
    if (found == mColumns.end()) found = mColumns.insert(mColumns.end(), name);
    return static_cast<size_t>(found - mColumns.begin());
}

void Ladder::Add(const Record& record, const Names& names) {
    if (++mRecords > kMost) {
        throw Failure(kUsage, "a chart of more than " + std::to_string(kMost) +
                                  " records is unreadable; select fewer with --filter, --follow, --from or --to");
    }
    Step step;
    step.wall = record.time.Wall();
    step.whole = Line(record, names, mZone);
    step.from = ColumnOf(record.library, false);
    step.to = ColumnOf(record.platform, true);
    if (record.kind != Record::Kind::Exchange) {
        step.text = step.whole.substr(std::min(step.whole.size(), kTime + 1));
        step.from = step.to = 0;
        step.failed = record.kind == Record::Kind::Damaged;
        mSteps.push_back(step);
        return;
    }
    if (record.event) std::swap(step.from, step.to);
    const std::string members = MembersText(record, record.message, names);
    step.text = FullName(record) + (members.empty() ? "" : " " + members);
    step.failed = IsError(record) && !record.reply;
    if (record.open) step.remark = "no reply yet";
    if (!record.open && record.WantsReply() && !record.reply) step.remark = "no reply";
    mSteps.push_back(step);
    if (!record.reply) return;
    std::swap(step.from, step.to);
    const std::string reply = MembersText(record, *record.reply, names);
    step.text = record.status ? std::to_string(*record.status) : "";
    if (!reply.empty()) step.text += (step.text.empty() ? "" : " ") + reply;
    step.wall += record.duration.value_or(0);
    step.remark = record.duration ? DurationText(*record.duration) : "";
    step.failed = IsError(record);
    mSteps.push_back(step);
}

std::vector<Ladder::Step> Ladder::Sorted() const {
    std::vector<Step> steps = mSteps;
    std::stable_sort(steps.begin(), steps.end(),
                     [](const Step& left, const Step& right) { return left.wall < right.wall; });
    return steps;
}

std::string Ladder::Text() const {
    if (mSteps.empty()) return "no messages\n";
    size_t gap = mColumns.size() > 2 ? 44 : 76;
    for (const std::string& name : mColumns) gap = std::max(gap, Width(name) + 2);
    const std::string begin(kTime + 2, ' ');
    std::string text = begin;
    std::string bars;
    for (size_t i = 0; i < mColumns.size(); ++i) {
        text += i + 1 < mColumns.size() ? Padded(mColumns[i], gap, ' ') : mColumns[i];
        bars += i + 1 < mColumns.size() ? Padded("|", gap, ' ') : "|";
    }
    text += "\n";
    uint64_t last = 0;
    for (const Step& step : Sorted()) {
        if (last != 0 && step.wall - last >= kPause) text += begin + bars + "  " + PauseText(step.wall - last) + "\n";
        last = step.wall;
        std::string row = TimeOfDay(step.wall, mZone) + "  ";
        if (step.from == step.to) {
            text += row + step.text + "\n";
            continue;
        }
        const size_t left = std::min(step.from, step.to);
        const size_t right = std::max(step.from, step.to);
        row += bars.substr(0, left * gap + 1) + Arrow(step.text, (right - left) * gap - 1, step.from < step.to) +
               bars.substr(right * gap);
        text += row + (step.remark.empty() ? "" : "  " + step.remark) + (step.failed ? "  !" : "") + "\n";
    }
    return Printable(text, LineBreaks::Kept);
}

std::string Ladder::Svg() const {
    const std::vector<Step> steps = Sorted();
    const auto x = [](size_t column) { return kLeft + column * kColumn; };
    std::string rows;
    size_t y = 2 * kRow;
    uint64_t last = 0;
    for (const Step& step : steps) {
        if (last != 0 && step.wall - last >= kPause) {
            rows += TextAt(kLeft + 8, y += kRow, PauseText(step.wall - last), " class=\"p\"") + "\n";
        }
        last = step.wall;
        y += kRow;
        rows += std::string("<g class=\"") + (step.failed ? "m f" : "m") + "\"><title>" + Xml(step.whole) + "</title>" +
                TextAt(8, y, TimeOfDay(step.wall, mZone), " class=\"p\"");
        if (step.from == step.to) {
            rows += TextAt(kLeft + 8, y, Cut(step.text, 110));
        } else {
            const size_t span = (std::max(step.from, step.to) - std::min(step.from, step.to)) * kColumn;
            rows += LineFrom(x(step.from), y + 4, x(step.to), y + 4, " marker-end=\"url(#a)\"") +
                    TextAt(x(std::min(step.from, step.to)) + 8, y, Cut(step.text, span / 8)) +
                    TextAt(x(std::max(step.from, step.to)) + 8, y, step.remark, " class=\"p\"");
        }
        rows += "</g>\n";
    }
    const size_t width = kLeft + std::max<size_t>(mColumns.size(), 2) * kColumn;
    const size_t height = y + kRow;
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(width) + "\" height=\"" +
                      std::to_string(height) + "\">\n" + kStyle;
    for (size_t i = 0; i < mColumns.size(); ++i) {
        svg += TextAt(x(i), kRow, mColumns[i], " text-anchor=\"middle\"") + LineFrom(x(i), kRow + 8, x(i), height - 8) +
               "\n";
    }
    return svg + rows + "</svg>\n";
}

}  // namespace hbbtv::traffic
