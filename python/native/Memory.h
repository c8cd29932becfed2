#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <utility>
#include <vector>

/// Hands an object over to the interpreter: an owner that arrays on the object's memory hold.
template <typename Object>
pybind11::capsule keptBy(std::unique_ptr<Object> object) {
    pybind11::capsule owner(object.get(),
                            [](void* memory) { delete static_cast<Object*>(memory); });
    object.release();
    return owner;
}

/// An array of `count` rows of `columns` numbers that takes the vector's memory over, uncopied.
///
/// @tparam Record  a plain structure of `columns` numbers and nothing else
template <typename Number, typename Record>
pybind11::array_t<Number> rows(std::vector<Record>&& records, pybind11::ssize_t columns) {
    auto kept = std::make_unique<std::vector<Record>>(std::move(records));
    const auto* begin = reinterpret_cast<const Number*>(kept->data());
    const auto count = static_cast<pybind11::ssize_t>(kept->size());
    return pybind11::array_t<Number>({count, columns}, begin, keptBy(std::move(kept)));
}

/// An array of a copy of the numbers.
inline pybind11::array_t<double> copied(const std::vector<double>& numbers) {
    return pybind11::array_t<double>(static_cast<pybind11::ssize_t>(numbers.size()),
                                     numbers.data());
}
