// A family whose requests are about objects of one type, named by a member of the request: rows that read such an
// object, change it, or release its handle.
#pragma once

#include <memory>
#include <type_traits>

#include "family/family.h"
#include "family/members.h"

namespace hbbtv::sim {

template <typename T>
class ObjectFamily : public Family {
  protected:
    // `kind` is the name of such an object in messages. `member` names it in families that have requests without one.
    ObjectFamily(const char* name, HandleTable<T>& table, const char* kind, const char* member = nullptr)
        : Family(name), mTable(table), mMember(member != nullptr ? member : ObjectMember()), mKind(kind) {}

    std::shared_ptr<T> Named(In in) const { return Find(mTable, in, mMember.c_str(), mKind); }

    void Release(In in, Out) { Remove(mTable, in, mMember.c_str(), mKind); }

    // Adds a row that writes a value of the object, given members of the request, into one member of the reply.
    template <typename Read>
    void Get(const char* name, const char* member, Read read) {
        Row(name, [this, member, read](In in, Out out) {
            if constexpr (std::is_invocable_v<Read, T&, In>) {
                out[member] = read(*Named(in), in);
            } else {
                out[member] = read(*Named(in));
            }
        });
    }

    // Adds a row that finds another object by members of the request; the reply has its handle, or the null handle.
    template <typename U, typename Search>
    void Look(const char* name, const char* member, HandleTable<U>& table, Search search) {
        Row(name,
            [this, member, &table, search](In in, Out out) { out[member] = Text(table, search(*Named(in), in)); });
    }

    // Adds a row that changes the object according to members of the request.
    template <typename Change>
    void Set(const char* name, Change change) {
        Row(name, [this, change](In in, Out) { change(*Named(in), in); });
    }

  private:
    HandleTable<T>& mTable;
    std::string mMember;
    const char* mKind;
};

}  // namespace hbbtv::sim
