// Reading of a line-up in a test: the result, the warnings and the reason for a refusal.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/error.h"
#include "television/line_up/formats.h"

namespace hbbtv::sim {

using Texts = std::vector<std::string>;

struct Reading {
    LineUp lineUp;
    Texts warnings;
    std::string refusal;

    // Returns the names of the services in order.
    Texts Names() const {
        Texts names;
        for (const auto& service : lineUp.services) names.push_back(service->name);
        return names;
    }

    std::vector<int> Numbers() const {
        std::vector<int> numbers;
        for (const auto& service : lineUp.services) numbers.push_back(service->number);
        return numbers;
    }
};

template <typename Read>
Reading ReadingOf(const Read& read) {
    Reading reading;
    try {
        reading.lineUp = read([&](const std::string& warning) { reading.warnings.push_back(warning); });
    } catch (const Fatal& e) {
        reading.refusal = e.what();
    }
    return reading;
}

// Reads a text that is not in a file.
inline Reading ReadingOfText(const std::string& text) {
    return ReadingOf([&](const FileWarning& warn) { return ParseAnyLineUp(text, "/nowhere/f", warn); });
}

inline Reading ReadingOfFile(const std::string& path) {
    return ReadingOf([&](const FileWarning& warn) { return ReadLineUp(path, warn); });
}

// Returns the message with which a line-up in JSON is refused, without its place; empty when it is accepted.
inline std::string RefusalOf(const std::string& text) {
    try {
        ParseLineUp(text, "f");
        return "";
    } catch (const Fatal& e) {
        const char* sentence = std::strchr(e.what(), ' ');
        return sentence == nullptr ? e.what() : sentence + 1;
    }
}

// Expects that the text is read with these services and warnings: "17: the line is odd".
inline void ExpectReading(const std::string& text, const Texts& names, Texts warnings) {
    SCOPED_TRACE(text.substr(0, 200));
    const Reading reading = ReadingOfText(text);
    for (std::string& warning : warnings) warning = "/nowhere/f:" + warning;
    EXPECT_EQ(reading.refusal, "");
    EXPECT_EQ(reading.Names(), names);
    EXPECT_EQ(reading.warnings, warnings);
}

// Returns the components in order: "video 1 5101 AVC_HD_25", "audio 2 0 AC3 und encrypted".
inline Texts ComponentsOf(const Service& service) {
    static const char* const kTypes[] = {"video", "audio", "subtitle"};
    Texts texts;
    for (const auto& component : service.components) {
        std::string text = kTypes[static_cast<int>(component->type)];
        text += " " + std::to_string(component->tag) + " " + std::to_string(component->pid) + " " + component->encoding;
        if (!component->language.empty()) text += " " + component->language;
        if (component->encrypted) text += " encrypted";
        texts.push_back(text);
    }
    return texts;
}

}  // namespace hbbtv::sim
