#pragma once

#include <gumbo.h>
#include <vector>

namespace quarrynet::services {

inline bool isElement(const GumboNode& node)
{
    return node.type == GUMBO_NODE_ELEMENT || node.type == GUMBO_NODE_TEMPLATE;
}

/// Visits the tree in document order, without recursion. Calls `enter` for each node, which returns whether to visit
/// its children, and `leave` for each element after its children.
template <class Enter, class Leave>
void walk(const GumboNode* root, Enter enter, Leave leave)
{
    struct Place
    {
        const GumboNode* node;
        unsigned next;
    };
    std::vector<Place> path;
    if (root != nullptr && enter(*root) && isElement(*root))
        path.push_back({root, 0});
    while (!path.empty()) {
        Place& place = path.back();
        const GumboVector& children = place.node->v.element.children;
        if (place.next == children.length) {
            leave(*place.node);
            path.pop_back();
            continue;
        }
        const auto* child = static_cast<const GumboNode*>(children.data[place.next++]);
        if (enter(*child) && isElement(*child))
            path.push_back({child, 0});
    }
}

} // namespace quarrynet::services
