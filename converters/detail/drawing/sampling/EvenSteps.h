#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace converters::drawing {

/// Divides a way into steps that have equal shares of a sum: where that counts the steps that are
/// needed, all steps take about the same of what is allowed.
///
/// The sum is told from node to node; in between it is taken to grow evenly.
class EvenSteps {
public:
    /// Forgets all nodes; the first one is here.
    void begin(double at) {
        m_nodes.clear();
        m_nodes.reserve(mostly);
        m_nodes.push_back({at, 0});
    }

    /// @param at     behind the last node
    /// @param share  from there to here; above 0
    void add(double at, double share) { m_nodes.push_back({at, m_nodes.back().sum + share}); }

    /// Where the first and the last node are.
    double start() const { return m_nodes.front().at; }
    double end() const { return m_nodes.back().at; }

    /// From the first node to the last.
    double total() const { return m_nodes.back().sum; }

    /// Calls visit(ends, number) for the ends of the steps, ascending, some at a time, until it
    /// returns false. The last is exactly the last node.
    ///
    /// @return what it returned last
    template <typename Visit>
    bool divide(std::size_t steps, const Visit& visit) const {
        const double share = total() / static_cast<double>(steps);
        std::array<double, atATime> ends;
        const Node* node = m_nodes.data();
        const Node* const last = m_nodes.data() + m_nodes.size() - 1;
        for (std::size_t i = 0; i < steps;) {
            const std::size_t number = std::min(steps - i, atATime);
            for (std::size_t k = 0; k < number; ++k) {
                const double sum = static_cast<double>(++i) * share;
                while (node + 1 != last && node[1].sum <= sum) {
                    ++node;
                }
                const double part = (sum - node[0].sum) / (node[1].sum - node[0].sum);
                ends[k] = node[0].at + part * (node[1].at - node[0].at);
            }
            if (i == steps) {
                ends[number - 1] = last->at;
            }
            if (!visit(ends.data(), number)) {
                return false;
            }
        }
        return true;
    }

    static constexpr std::size_t atATime = 32;

private:
    struct Node {
        double at;
        /// Of all shares from the first node to this.
        double sum;
    };

    /// Nodes that there mostly are.
    static constexpr std::size_t mostly = 64;

    std::vector<Node> m_nodes;
};

} // namespace converters::drawing
