#include "traffic/view/filter.h"

#include <cctype>
#include <utility>

#include "common/text/quote.h"
#include "traffic/view/filter_node.h"

namespace hbbtv::traffic {

namespace {

// No person types more.
constexpr int kDeepest = 100;

using Node = std::shared_ptr<const FilterNode>;

bool IsBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

class FilterParser {
  public:
    explicit FilterParser(const std::string& text) : mText(text) {}

    Node Parse() {
        SkipBlanks();
        if (AtEnd()) return nullptr;
        Node root = Or();
        if (!AtEnd()) FailAt(mAt + 1, "\")\" without \"(\"");
        return root;
    }

  private:
    bool AtEnd() const { return mAt == mText.size(); }
    char Here() const { return AtEnd() ? '\0' : mText[mAt]; }

    void SkipBlanks() {
        while (!AtEnd() && IsBlank(Here())) ++mAt;
    }

    // Takes "&" or "&&".
    bool Take(char c) {
        if (Here() != c) return false;
        ++mAt;
        if (c != '(' && c != ')' && c != '!' && Here() == c) ++mAt;
        SkipBlanks();
        return true;
    }

    static Node Combined(FilterNode::Kind kind, std::vector<Node> operands) {
        if (operands.size() == 1) return operands[0];
        auto node = std::make_shared<FilterNode>();
        node->kind = kind;
        for (const Node& operand : operands) node->needsPayloads |= operand->needsPayloads;
        node->operands = std::move(operands);
        return node;
    }

    Node Or() {
        std::vector<Node> operands{And()};
        while (Take('|')) operands.push_back(And());
        return Combined(FilterNode::Kind::Or, std::move(operands));
    }

    Node And() {
        std::vector<Node> operands{Operand()};
        while (Take('&') || (!AtEnd() && Here() != '|' && Here() != ')')) operands.push_back(Operand());
        return Combined(FilterNode::Kind::And, std::move(operands));
    }

    Node Operand() {
        if (++mDepth > kDeepest) FailAt(mAt + 1, "nested too deeply");
        Node node;
        if (Take('!')) {
            auto inverted = std::make_shared<FilterNode>();
            inverted->kind = FilterNode::Kind::Not;
            inverted->operands = {Operand()};
            inverted->needsPayloads = inverted->operands[0]->needsPayloads;
            node = inverted;
        } else if (Here() == '(') {
            const size_t begin = mAt + 1;
            Take('(');
            node = Or();
            if (!Take(')')) FailAt(begin, "\"(\" without \")\"");
        } else {
            node = std::make_shared<FilterNode>(TestOf(Word()));
        }
        --mDepth;
        return node;
    }

    std::string Quoted() {
        const size_t begin = ++mAt;
        std::string value;
        for (; !AtEnd() && Here() != '"'; ++mAt) {
            if (Here() == '\\' && mAt + 1 < mText.size()) ++mAt;
            value += Here();
        }
        if (AtEnd()) FailAt(begin, "the quote is not closed");
        ++mAt;
        return value;
    }

    // A value ends at a blank or at an operator; text between words has no comparison in it either.
    std::string Plain(const std::string& ends) {
        const size_t begin = mAt;
        while (!AtEnd() && !IsBlank(Here()) && ends.find(Here()) == std::string::npos) ++mAt;
        return mText.substr(begin, mAt - begin);
    }

    std::string Comparison() {
        for (const char* comparison : {"!=", ">=", "<=", "==", ":", "=", ">", "<", "~"}) {
            if (mText.compare(mAt, std::string(comparison).size(), comparison) != 0) continue;
            mAt += std::string(comparison).size();
            return comparison;
        }
        return "";
    }

    FilterWord Word() {
        FilterWord word;
        word.position = mAt + 1;
        if (Here() == '"') {
            word.quoted = true;
            word.value = Quoted();
        } else {
            word.value = Plain("&|()!<>=~:\"");
            word.comparison = Comparison();
            if (!word.comparison.empty()) {
                word.field = std::exchange(word.value, "");
                if (word.field.empty())
                    FailAt(word.position, "a field is missing before " + hbbtv::Quoted(word.comparison));
                word.quoted = Here() == '"';
                word.value = word.quoted ? Quoted() : Plain("&|()");
                if (word.value.empty() && !word.quoted) FailAt(mAt + 1, "a value is missing after " + word.field);
            }
        }
        if (word.value.empty() && word.field.empty() && !word.quoted) FailAt(mAt + 1, "a word is missing");
        SkipBlanks();
        return word;
    }

    const std::string& mText;
    size_t mAt = 0;
    int mDepth = 0;
};

}  // namespace

bool FilterNode::Matches(const Subject& subject) const {
    switch (kind) {
        case Kind::Test:
            return test(subject);
        case Kind::Not:
            return !operands[0]->Matches(subject);
        default:
            break;
    }
    for (const auto& operand : operands) {
        if (operand->Matches(subject) == (kind == Kind::Or)) return kind == Kind::Or;
    }
    return kind == Kind::And;
}

Filter::Filter(const std::string& text) : mRoot(FilterParser(text).Parse()) {}

bool Filter::Matches(const Record& record) const {
    return mRoot == nullptr || mRoot->Matches(Subject(record));
}

bool Filter::NeedsPayloads() const {
    return mRoot != nullptr && mRoot->needsPayloads;
}

}  // namespace hbbtv::traffic
