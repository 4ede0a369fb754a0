#include "html/ClassMap.h"

std::string get_or_create_class(const std::string& declarations, const std::string& wantedName,
                                ClassMap& classMap) {
    const auto known = classMap.nameOfDeclarations_.find(declarations);
    if (known != classMap.nameOfDeclarations_.end()) return *known->second;

    std::string name = wantedName;
    if (classMap.classes_.contains(wantedName)) {
        std::uint64_t& number = classMap.nextNumber_.try_emplace(wantedName, 1).first->second;
        do
            name = wantedName + std::to_string(number++);
        while (classMap.classes_.contains(name));
    }
    const auto created = classMap.classes_.emplace(name, declarations).first;
    classMap.nameOfDeclarations_.emplace(created->second, &created->first);
    return name;
}
