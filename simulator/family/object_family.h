// A family whose requests are about objects of one kind, which a member of the request names: rows that read such an
// object, change it, or give its handle back.
#pragma once

#include <memory>
#include <type_traits>

#include "family/family.h"
#include "family/members.h"

namespace hbbtv::sim {

template <typename T>
class ObjectFamily : public Family {
  protected:
    // `kind` is what refusals call such an object.
    ObjectFamily(FamilyAddress address, HandleTable<T>& table, const char* member, const char* kind)
        : Family(std::move(address)), mTable(table), mMember(member), mKind(kind) {}

    std::shared_ptr<T> Named(In in) const { return Find(mTable, in, mMember, mKind); }

    void Release(In in, Out) { Remove(mTable, in, mMember, mKind); }

    // Reads the object, or the object with members of the request, into one member of the reply.
    template <typename Read>
    void Get(int code, const char* name, const char* member, Read read) {
        Row(code, name, [this, member, read](In in, Out out) {
            if constexpr (std::is_invocable_v<Read, T&, In>) {
                out[member] = read(*Named(in), in);
            } else {
                out[member] = read(*Named(in));
            }
        });
    }

    // Finds another object by members of the request; the reply has its handle, or the null handle.
    template <typename U, typename Search>
    void Look(int code, const char* name, const char* member, HandleTable<U>& table, Search search) {
        Row(code, name,
            [this, member, &table, search](In in, Out out) { out[member] = Text(table, search(*Named(in), in)); });
    }

    // Changes the object as members of the request say.
    template <typename Change>
    void Set(int code, const char* name, Change change) {
        Row(code, name, [this, change](In in, Out) { change(*Named(in), in); });
    }

  private:
    HandleTable<T>& mTable;
    const char* mMember;
    const char* mKind;
};

}  // namespace hbbtv::sim
