#include "material/modelregistry.h"

#include "cold/coldlaws.h"
#include "cold/plastic_8.h"
#include "hot/hotmodels.h"

namespace zelko {

namespace {

constexpr ModelId kKnownIds[] = {
    {ColdModel, 1},   {ColdModel, 3},   {ColdModel, 4},   {ColdModel, 8},   {ColdModel, 31},  {ColdModel, 32},
    {ColdModel, 33},  {ColdModel, 34},  {ColdModel, 35},  {HotModel, 16},   {HotModel, 17},   {HotModel, 50},
    {HotModel, 70},   {HotModel, 161},  {HotModel, 162},  {HotModel, 163},  {HotModel, 164},  {HotModel, 165},
    {HotModel, 166},  {HotModel, 167},  {HotModel, 168},  {HotModel, 169},  {HotModel, 1600},
};

}  // namespace

std::shared_ptr<Plastic> createRecordOfKind(int kind)
{
    if (kind == ColdModel)
        return std::make_shared<RoomOri>();
    if (kind == HotModel)
        return std::make_shared<PLASTIC_HOT>();
    return nullptr;
}

bool isOldLayoutHotNumber(int number)
{
    return number == 16 || number == 17 || number == 50 || number == 70 || (number >= 161 && number <= 168);
}

std::shared_ptr<Plastic> createLibraryRecord(int number)
{
    if (number == 0)
        return std::make_shared<RoomOri>();
    if (number == 16 || number == 17 || (number >= 161 && number <= 168))
        return std::make_shared<PLASTIC_HOT>();
    return nullptr;
}

std::shared_ptr<Plastic> createModel(ModelId id)
{
    if (id.kind == HotModel) {
        const std::optional<HotModelId> hot = hotModelIdOf(id.number);
        return hot ? createHotModel(*hot) : nullptr;
    }
    if (id.kind != ColdModel)
        return nullptr;
    if (id.number == 8)
        return std::make_shared<PLASTIC_8>();
    for (const ColdLawId law : kColdLaws)
        if (static_cast<int>(law) == id.number)
            return makeColdLaw(law, RoomOri());
    return nullptr;
}

std::span<const ModelId> knownModelIds() { return kKnownIds; }

}  // namespace zelko
