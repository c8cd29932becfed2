#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

class DXFEntity;

namespace dxfeditor {

/// The entities of a drawing, in the order in which they were added.
///
/// A removed entity leaves its slot empty until half of all slots are, so that many entities are
/// removed in time that does not go with the square of them. Where an entity stands is looked up in
/// an index that the first removal builds: most drawings never need it.
class EntityList {
public:
    using Slots = std::vector<std::shared_ptr<DXFEntity>>;

    /// Appends an entity, also one that is already there or empty. When memory runs out, the list
    /// stays as it was.
    void add(std::shared_ptr<DXFEntity> entity);

    /// Removes every occurrence of this very object. Needs no memory: without any for the index,
    /// the list is searched.
    ///
    /// The entity added last is removed without the index when nobody else holds it: then it cannot
    /// be there twice. For that the caller hands over his own pointer.
    void remove(std::shared_ptr<DXFEntity> entity);

    /// In order; empty pointers stand for removed entities, too.
    const Slots& slots() const { return m_slots; }

    /// A copy of the list, without the removed ones.
    std::list<std::shared_ptr<DXFEntity>> copy() const;

private:
    struct Index {
        std::unordered_multimap<const DXFEntity*, std::size_t> slotOf;
        /// At least as long as the list.
        std::vector<bool> isRemoved;
        std::size_t removedCount = 0;
    };

    bool buildIndex();
    void dropRemoved();

    Slots m_slots;
    std::unique_ptr<Index> m_index;
};

} // namespace dxfeditor
