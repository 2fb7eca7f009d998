// `ObjectsMap`: named objects attached to a node.
#pragma once

#include <mutex>
#include <shared_mutex>

#include "platform/com_ptr.h"
#include "platform/sync.h"
#include "xml/keyed_list.h"
#include "xml/name_key.h"

namespace zck::XMLParse {

/// Objects that other rooms hang on a node under a name; they are released with the node. Any thread.
class ObjectsMap {
public:
    /// Replaces an object of that name; null takes it away.
    void ObjectAttach(TextView name, IUnknown *object) {
        const uint64_t key = NameKey(name);
        ComPtr<IUnknown> replaced(object);    // released behind the lock
        std::unique_lock lock(m_objectLock);
        const size_t at = m_objects.Find(key);
        if (at == Objects::kNone) {
            if (object != nullptr) m_objects.Append(key, std::move(replaced));
        } else if (object != nullptr) {
            m_objects[at].Swap(replaced);
        } else {
            replaced = m_objects.Remove(at);
        }
        lock.unlock();
    }

    ComPtr<IUnknown> ObjectFind(TextView name) const {
        std::shared_lock lock(m_objectLock);
        const size_t at = m_objects.Find(NameKey(name));
        return at != Objects::kNone ? m_objects[at] : ComPtr<IUnknown>();
    }

protected:
    ObjectsMap() = default;
    ~ObjectsMap() = default;

    /// Guards the attached objects, and lets one thread at a time make missing children.
    mutable FrameRWLock m_objectLock;

private:
    using Objects = KeyedList<ComPtr<IUnknown>>;
    Objects m_objects;
};

}    // namespace zck::XMLParse
