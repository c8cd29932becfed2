#pragma once

#include <memory>

/// A clone of an entity, as the class that the entity is of.
template <typename Entity>
std::unique_ptr<Entity> cloneOf(const Entity& entity) {
    return std::unique_ptr<Entity>(&dynamic_cast<Entity&>(*entity.clone()));
}
