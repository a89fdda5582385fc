#include "Platform/Pasteboard.h"

namespace
{
class AbsentPasteboard final : public XPasteboard
{
public:
    bool HasType( TextView ) const override { return false; }
    __SafeCFPropertyList GetPropertyList( TextView ) const override { return nullptr; }
    std::optional<Text> GetString() const override { return {}; }
};
} // namespace

const XPasteboard& XPasteboard::Absent()
{
    static const AbsentPasteboard gAbsent;
    return gAbsent;
}
