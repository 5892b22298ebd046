#include "siblings/tools/XmlPath.h"

namespace {

// Takes `name=value?` off the path.
bool TakeCondition(std::u16string_view& path, XmlPathStep& step)
{
    const std::size_t equals = path.find(u'=');
    const std::size_t close = equals == path.npos ? path.npos : path.find(u'?', equals);
    if (close == path.npos) {
        return false;
    }
    step.name = path.substr(0, equals);
    step.value = path.substr(equals + 1, close - equals - 1);
    step.hasCondition = true;
    path.remove_prefix(close + 1);
    return true;
}

}  // namespace

bool TakePathStep(std::u16string_view& path, XmlPathStep& step)
{
    step = {};
    step.tag = path.substr(0, path.find_first_of(u"/?"));
    path.remove_prefix(step.tag.size());
    if (step.tag.empty()) {
        return false;
    }
    if (path.starts_with(u'?')) {
        path.remove_prefix(1);
        if (!TakeCondition(path, step)) {
            return false;
        }
    }
    if (path.empty()) {
        return true;
    }
    // A path that ends in "/" lacks its last step.
    const bool goesOn = path.size() > 1 && path.front() == u'/';
    path.remove_prefix(1);
    return goesOn;
}
