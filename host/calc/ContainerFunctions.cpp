#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Bytes.h"
#include "host/calc/Digest.h"
#include "host/values/Picture.h"

#include <algorithm>
#include <array>

/// Containers as files: their names, sizes and digests, and the sizes of the pictures in them.

namespace host::calc {

namespace {

bool isContainer(const Data& value) { return value.nativeType() == DataType::binary; }

DataRef sizeResult(std::size_t size) { return numberResult(static_cast<std::int64_t>(size)); }

DataRef none(const Data&) { return emptyResult(); }
DataRef zero(const Data&) { return numberResult(0); }
DataRef fileName(const Data& value) {
    return textResult(isContainer(value) ? value.asBinary().fileName() : Text());
}
DataRef fileSize(const Data& value) { return sizeResult(bytesOf(value).size()); }
DataRef storageType(const Data& value) {
    if (value.isEmpty()) return emptyResult();
    return textResult(isContainer(value) ? u"Embedded" : u"Text");
}
DataRef md5(const Data& value) {
    static const Data name(Text(u"MD5"));
    return asciiResult(hexText(digestOf(bytesOf(value), digestAlgorithm(name))));
}

PictureSize pictureSize(const Data& value) {
    return isContainer(value) ? pictureSizeOf(value.asBinary().fileBytes()) : PictureSize{};
}
DataRef width(const Data& value) { return numberResult(pictureSize(value).width); }
DataRef height(const Data& value) { return numberResult(pictureSize(value).height); }

enum class Group : std::uint8_t { general, image };

struct Attribute {
    Group group;
    std::u16string_view name;  ///< folded
    std::u16string_view title; ///< in lists of a group
    DataRef (*value)(const Data&);
};
constexpr std::array attributes{
    Attribute{Group::general, u"filename", u"Filename", fileName},
    Attribute{Group::general, u"storagetype", u"Storage Type", storageType},
    Attribute{Group::general, u"md5", u"MD5", md5},
    Attribute{Group::general, u"filesize", u"File Size", fileSize},
    Attribute{Group::general, u"internalsize", u"Internal Size", fileSize},
    Attribute{Group::general, u"externalsize", u"External Size", zero},
    Attribute{Group::general, u"externalfiles", u"External Files", none},
    Attribute{Group::image, u"width", u"Width", width},
    Attribute{Group::image, u"height", u"Height", height},
    // The host keeps no such facts of pictures.
    Attribute{Group::image, u"dpiwidth", u"DPI Width", none},
    Attribute{Group::image, u"dpiheight", u"DPI Height", none},
    Attribute{Group::image, u"transparency", u"Transparency", none},
    Attribute{Group::image, u"orientation", u"Orientation", none},
};

struct GroupName {
    Group group;
    std::u16string_view name; ///< folded
    std::u16string_view title;
};
constexpr std::array groupNames{GroupName{Group::general, u"general", u"General"},
                                GroupName{Group::image, u"image", u"Image"}};

/// A line a title and value for every attribute of a group, under the group's name.
Text groupText(const GroupName& group, const Data& value) {
    Text text(u'[' + std::u16string(group.title) + u"]\r");
    for (const Attribute& row : attributes) {
        if (row.group != group.group) continue;
        text.append(Text(std::u16string(row.title) + u": "));
        text.append(row.value(value)->asText());
        text.append(std::u16string_view(u"\r"));
    }
    return text;
}

/// GetContainerAttribute ( field ; attributeName )
DataRef containerAttribute(Arguments arguments) {
    const Data& value = *arguments[0];
    const std::u16string name = foldName(arguments[1]->asText().units());
    for (const Attribute& row : attributes)
        if (row.name == name) return row.value(value);
    Text list;
    for (const GroupName& row : groupNames)
        if (row.name == name || name == u"all") list.append(groupText(row, value));
    return list.empty() ? questionMark() : textResult(std::move(list));
}

template<DataRef (*attribute)(const Data&)>
DataRef ofFirst(Arguments arguments) {
    return attribute(*arguments[0]);
}

/// VerifyContainer ( field ): the files of a solution are never stored outside, so there is none to verify.
DataRef verifyContainer(Arguments) { return questionMark(); }

/// GetTextFromPDF ( container ): "?" for what is no such document. The host reads none.
DataRef textFromPdf(Arguments arguments) {
    if (!bytesOf(*arguments[0]).starts_with("%PDF-")) return questionMark();
    throw Error{error::notSupported};
}

constexpr std::array rows{
    EagerRow{u"GetContainerAttribute", containerAttribute},
    EagerRow{u"GetHeight", ofFirst<height>},
    EagerRow{u"GetTextFromPDF", textFromPdf},
    EagerRow{u"GetWidth", ofFirst<width>},
    EagerRow{u"VerifyContainer", verifyContainer},
};

} // namespace

void addContainerFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
