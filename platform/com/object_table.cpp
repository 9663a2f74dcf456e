#include "object_table.h"

#include <new>
#include <utility>

namespace quorvane::platform {

std::shared_ptr<ExportedObject> ObjectTable::Add(IUnknown* object, Number& number) {
    auto exported = std::make_shared<ExportedObject>();
    exported->identity = Query<IUnknown>(object);
    exported->dispatch = Query<IDispatch>(object);
    if (!exported->identity) return nullptr;
    const std::lock_guard lock(mutex_);
    if (closed_) return nullptr;
    const auto [place, isNew] = numbers_.try_emplace(exported->identity.get(), lastNumber_ + 1);
    if (isNew) {
        try {
            entries_[place->second].object = exported;
        } catch (const std::bad_alloc&) {
            numbers_.erase(place);
            throw;
        }
        ++lastNumber_;
    }
    number = place->second;
    Entry& entry = entries_[number];
    ++entry.users;
    return entry.object;
}

std::shared_ptr<ExportedObject> ObjectTable::Find(Number number) {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(number);
    return found == entries_.end() ? nullptr : found->second.object;
}

void ObjectTable::AddUser(Number number) {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(number);
    if (found != entries_.end()) ++found->second.users;
}

bool ObjectTable::RemoveUser(Number number) {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(number);
    return found != entries_.end() && --found->second.users == 0;
}

bool ObjectTable::Has(Number number) {
    const std::lock_guard lock(mutex_);
    return entries_.contains(number);
}

void ObjectTable::ReleaseUnused(Number number) {
    Entry unused;
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(number);
    if (found == entries_.end() || found->second.users != 0) return;
    unused = std::move(found->second);
    numbers_.erase(unused.object->identity.get());
    entries_.erase(found);
    // `unused` goes after the lock.
}

void ObjectTable::ReleaseAll() {
    std::map<Number, Entry> left;
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        left.swap(entries_);
        numbers_.clear();
    }
}

void ObjectTable::Forget() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    for (auto& [number, entry] : entries_) {
        (void)entry.object->identity.release();
        (void)entry.object->dispatch.release();
    }
    entries_.clear();
    numbers_.clear();
}

}  // namespace quorvane::platform
