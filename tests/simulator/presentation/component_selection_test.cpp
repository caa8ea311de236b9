// Which sound and which subtitles the viewer's preferences choose.
#include "families/video_broadcast/component_selection.h"

#include <gtest/gtest.h>

#include <sstream>

#include "television/device/state_store.h"

namespace hbbtv::sim {
namespace {

struct Choice {
    const char* has;  // "deu fra deu+": components in these languages, + with audio description or for the impaired
    const char* preferred;
    bool aided;
    int place;  // of the chosen component, -1 for none
};

class UsualComponent : public testing::Test {
  protected:
    int Chosen(ComponentType type, const Choice& choice) {
        const bool sound = type == ComponentType::Audio;
        mPreferences.Set(sound ? Preference::AudioLanguage : Preference::SubtitleLanguage, choice.preferred);
        mPreferences.Set(sound ? Preference::AudioDescription : Preference::HearingImpaired, choice.aided);
        const auto service = std::make_shared<Service>();
        std::istringstream words(choice.has);
        for (std::string word; words >> word;) {
            Component component;
            component.type = type;
            component.language = word.substr(0, 3);
            (sound ? component.audioDescription : component.hearingImpaired) = word.size() > 3;
            service->components.push_back(std::make_shared<Component>(component));
        }
        ComponentSelection selection(mPreferences);
        selection.Start(service);
        const auto usual = selection.Usual(type);
        for (size_t i = 0; i < service->components.size(); ++i) {
            if (service->components[i] == usual) return static_cast<int>(i);
        }
        return -1;
    }

    void Expect(ComponentType type, const std::vector<Choice>& choices) {
        for (const Choice& choice : choices) {
            EXPECT_EQ(Chosen(type, choice), choice.place)
                << choice.has << " for " << choice.preferred << (choice.aided ? " aided" : "");
        }
    }

    StateStore mStore{""};
    Preferences mPreferences{mStore, {}};
};

TEST_F(UsualComponent, OfSoundIsInTheFirstPreferredLanguageThatThereIs) {
    Expect(ComponentType::Audio, {{"fra deu eng", "deu,eng", false, 1},
                                  {"fra eng deu", "deu,eng", false, 2},
                                  {"fra eng", "deu,eng", false, 1},
                                  {"fra deu deu", "deu", false, 1},
                                  {"fra ita", "deu,eng", false, 0},
                                  {"", "deu,eng", false, -1}});
}

TEST_F(UsualComponent, OfSoundHasAudioDescriptionOnlyWhenItIsPreferred) {
    Expect(ComponentType::Audio, {{"deu+ deu", "deu", false, 1},
                                  {"deu+ fra", "deu", false, 1},
                                  {"deu+", "deu", false, -1},
                                  {"deu+", "eng", true, 0},
                                  {"deu deu+", "deu", true, 1},
                                  {"deu eng+", "deu,eng", true, 1},
                                  {"eng deu fra+", "deu,eng", true, 1},
                                  {"fra+ ita", "deu", true, 1}});
}

TEST_F(UsualComponent, OfSubtitlesGoesByLanguageAndThenByHearing) {
    Expect(ComponentType::Subtitle, {{"fra deu", "deu", false, 1},
                                     {"deu+ deu", "deu", false, 1},
                                     {"fra deu+", "deu", false, 1},
                                     {"deu deu+", "deu", true, 1},
                                     {"fra deu", "deu", true, 1},
                                     {"fra deu", "***", false, 0},
                                     {"fra ita", "ita,***", false, 1},
                                     {"fra deu", "eng", false, 0}});
}

TEST_F(UsualComponent, OfSubtitlesIsSelectedAtTheStartOnlyWhenTheViewerWantsSubtitles) {
    const auto service = std::make_shared<Service>();
    Component subtitle;
    subtitle.type = ComponentType::Subtitle;
    service->components.push_back(std::make_shared<Component>(subtitle));
    ComponentSelection selection(mPreferences);
    selection.Start(service);
    EXPECT_EQ(selection.Active(), ComponentList());
    mPreferences.Set(Preference::Subtitles, true);
    selection.Start(service);
    EXPECT_EQ(selection.Active(), service->components);
}

}  // namespace
}  // namespace hbbtv::sim
