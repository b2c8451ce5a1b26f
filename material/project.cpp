#include "material/project.h"

namespace zelko {

Project::Project()
    : elastic(std::make_shared<ELASTIC>()),
      conductivity(std::make_shared<HEAT>()),
      heatCapacity(std::make_shared<HEAT>())
{
}

Project::Project(const Project& other)
    : title(other.title),
      elastic(std::make_shared<ELASTIC>(*other.elastic)),
      activeModel(other.activeModel ? other.activeModel->clone() : nullptr),
      conductivity(std::make_shared<HEAT>(*other.conductivity)),
      heatCapacity(std::make_shared<HEAT>(*other.heatCapacity))
{
}

Project& Project::operator=(const Project& other)
{
    if (this != &other)
        *this = Project(other);
    return *this;
}

Project::~Project()
{
    heatCapacity.reset();
    conductivity.reset();
    activeModel.reset();
    elastic.reset();
}

void Project::setModel(const std::shared_ptr<Plastic>& model) { activeModel = model; }

std::shared_ptr<Plastic> Project::libraryModel() const
{
    if (activeModel && activeModel->heldModel)
        return activeModel->heldModel;
    return activeModel;
}

std::u16string titleFromViewText(std::u16string_view text)
{
    std::u16string title;
    title.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        title.push_back(text[i]);
        if (text[i] == u'%' && i + 1 < text.size() && text[i + 1] == u'%')
            ++i;
    }
    if (title.size() > kTitleCapacity - 1) {
        // Half a surrogate pair would be written as a character of its own.
        const bool splitsPair = title[kTitleCapacity - 2] >= 0xD800 && title[kTitleCapacity - 2] <= 0xDBFF;
        title.resize(kTitleCapacity - (splitsPair ? 2 : 1));
    }
    return title;
}

}  // namespace zelko
