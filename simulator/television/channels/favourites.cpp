#include "television/channels/favourites.h"

#include <algorithm>
#include <set>

#include "core/error.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

const char* const kDocument = "favourites";
constexpr size_t kMostLists = 1000;

KeptFavourites KeptFormOf(const FavouriteList& list) {
    KeptFavourites kept{list.Id(), list.Name(), {}};
    for (const auto& channel : list.Channels().Channels()) kept.ccids.push_back(channel->ccid);
    return kept;
}

KeptFavourites ReadList(const Json::Value& object) {
    KeptFavourites list{TextIn(object, "id"), TextIn(object, "name"), {}};
    for (const Json::Value& ccid : ListIn(object, "channels")) {
        if (!ccid.isString()) throw Refused("a channel is not a string");
        list.ccids.push_back(ccid.asString());
    }
    return list;
}

Json::Value Written(const KeptFavourites& list) {
    Json::Value object;
    object["id"] = list.id;
    object["name"] = list.name;
    object["channels"] = Json::Value(Json::arrayValue);
    for (const std::string& ccid : list.ccids) object["channels"].append(ccid);
    return object;
}

}  // namespace

void FavouriteList::SetName(const std::string& name) {
    if (name == mName) return;
    mName = name;
    changed.Notify();
}

void FavouriteList::Insert(size_t place, const std::shared_ptr<Channel>& channel) {
    mChannels.Insert(place, channel);
    changed.Notify();
}

void FavouriteList::Remove(size_t place) {
    mChannels.Remove(place);
    changed.Notify();
}

Favourites::Favourites(const StateStore& store, std::vector<KeptFavourites> brought, const ChannelOfCcid& channelOf)
    : mStore(store), mKept(std::move(brought)) {
    if (!mKept.empty()) mKeptInUse = mKept.front().id;
    mStore.Load(kDocument, [this](const Json::Value& document) { Take(document); });
    Fill(channelOf);
}

void Favourites::Add(std::string id, std::string name, ChannelVector channels) {
    mLists.push_back(std::make_shared<FavouriteList>(std::move(id), std::move(name), ChannelList(std::move(channels))));
    mLists.back()->changed.Watch([this, list = mLists.back().get()] {
        if (list == mInUse.get()) changed.Notify();
    });
}

// Throws before anything is changed.
void Favourites::Take(const Json::Value& document) {
    std::vector<KeptFavourites> lists;
    std::set<std::string> ids{""};
    for (const Json::Value& object : ListIn(document, "lists")) {
        lists.push_back(ReadList(object));
        if (lists.back().id.empty()) throw Refused("a list has no id");
        if (!ids.insert(lists.back().id).second) throw Refused("two lists have the same id");
    }
    const std::string inUse = TextIn(document, "inUse");
    if (ids.count(inUse) == 0) throw Refused("the list in use is missing");
    mKept = std::move(lists);
    mKeptInUse = inUse;
}

void Favourites::Fill(const ChannelOfCcid& channelOf) {
    for (const KeptFavourites& kept : mKept) {
        ChannelVector channels;
        for (const std::string& ccid : kept.ccids) {
            if (auto channel = channelOf(ccid)) channels.push_back(std::move(channel));
        }
        const size_t missing = kept.ccids.size() - channels.size();
        if (missing != 0) {
            Journal::Log("favourite list " + Excerpt(kept.id) + ": the line-up lacks " + std::to_string(missing) +
                         " of its channels");
        }
        Add(kept.id, kept.name, std::move(channels));
    }
    mInUse = Find(mKeptInUse);
}

Favourites::List Favourites::Find(const std::string& id) const {
    const auto found = std::find_if(mLists.begin(), mLists.end(), [&](const List& list) { return list->Id() == id; });
    return found == mLists.end() ? nullptr : *found;
}

std::vector<Favourites::List> Favourites::Holding(const Channel& channel) const {
    std::vector<List> holding;
    for (const List& list : mLists) {
        if (list->Channels().Position(channel)) holding.push_back(list);
    }
    return holding;
}

Favourites::List Favourites::Create(const std::string& name) {
    if (mLists.size() >= kMostLists) throw Refused("there are already 1000 favourite lists");
    std::string id;
    do {
        id = "fav:" + std::to_string(++mCreated);
    } while (Find(id) || Kept(id) != nullptr);
    Add(id, name, {});
    return mLists.back();
}

void Favourites::Remove(size_t index) {
    const List removed = mLists[index];
    mLists.erase(mLists.begin() + static_cast<std::ptrdiff_t>(index));
    if (removed == mInUse) Use(nullptr);
}

void Favourites::Use(const List& list) {
    if (list == mInUse) return;
    mInUse = list;
    changed.Notify();
}

const KeptFavourites* Favourites::Kept(const std::string& id) const {
    const auto found = std::find_if(mKept.begin(), mKept.end(), [&](const auto& kept) { return kept.id == id; });
    return found == mKept.end() ? nullptr : &*found;
}

void Favourites::Commit(const FavouriteList& list) {
    if (Find(list.Id()).get() != &list) throw Refused("the list is no longer in the collection");
    std::vector<KeptFavourites> lists = mKept;
    const auto same = std::find_if(lists.begin(), lists.end(), [&](const auto& kept) { return kept.id == list.Id(); });
    same == lists.end() ? lists.push_back(KeptFormOf(list)) : void(*same = KeptFormOf(list));
    Keep(std::move(lists), mKeptInUse);
}

void Favourites::Commit() {
    std::vector<KeptFavourites> lists;
    for (const List& list : mLists) {
        const KeptFavourites* kept = Kept(list->Id());
        lists.push_back(kept != nullptr ? *kept : KeptFormOf(*list));
    }
    Keep(std::move(lists), mInUse ? mInUse->Id() : "");
}

void Favourites::Keep(std::vector<KeptFavourites> lists, const std::string& inUse) {
    Json::Value document;
    document["inUse"] = inUse;
    document["lists"] = Json::Value(Json::arrayValue);
    for (const KeptFavourites& list : lists) document["lists"].append(Written(list));
    mStore.Save(kDocument, document);
    mKept = std::move(lists);
    mKeptInUse = inUse;
}

}  // namespace hbbtv::sim
