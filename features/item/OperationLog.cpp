#include "features/item/OperationLog.h"

#include <QLatin1String>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace OperationLog {

namespace {

struct FragmentRow {
    Fragment fragment;
    const char* text;
};

// "Nd_GetBooltValue", "Nd_GetEnumIntValuec", the quote of "Nd_CmdExecute'hCam", the lower-case "hcam", the missing
// semicolons and the integer that takes a float are deliberate.
constexpr FragmentRow kFragments[] = {
    {Fragment::NodeLookup, "status = Orvo::Nd_GetNode(hCam, \"%1\", &hNode);\n"},
    {Fragment::IntegerRead, "int64_t llVal = 0;\n"
                            "status = Orvo::Nd_GetIntValue(hCam, hNode, &llVal);\n"},
    {Fragment::FloatRead, "int64_t llVal = 0;\n"
                          "status = Orvo::Nd_GetFloatValue(hCam, hNode, &llVal);\n"},
    {Fragment::BooleanRead, "bool bVal = false;\n"
                            "status = Orvo::Nd_GetBooltValue(hCam, hNode, &bVal);\n"},
    {Fragment::EnumIntegerRead, "int64_t llVal = 0;\n"
                                "status = Orvo::Nd_GetEnumIntValuec(hCam, hNode, &llVal);\n"},
    {Fragment::StringRead, "int len = 0\n"
                           "char *buf = NULL\n"
                           "status = Orvo::Nd_GetStrValue(hCam, hNode, NULL, &len);\n"
                           "if((Orvo::CAM_API_STS_SUCCESS == status) && (len > 0)){\n"
                           "    buf = new char[len];\n"
                           "    status = Orvo::Nd_GetStrValue(hCam, hNode, buf, &len);\n"
                           "    if(Orvo::CAM_API_STS_SUCCESS == status){\n"
                           "        ....;\n"
                           "    }\n"
                           "    delete[] buf;\n"
                           "    buf = NULL;\n"
                           "}\n"},
    {Fragment::EnumRead, "int len = 0\n"
                         "char *buf = NULL\n"
                         "status = Orvo::Nd_GetEnumStrValue(hCam, hNode, NULL, &len);\n"
                         "if((Orvo::CAM_API_STS_SUCCESS == status) && (len > 0)){\n"
                         "    buf = new char[len];\n"
                         "    status = Orvo::Nd_GetEnumStrValue(hCam, hNode, buf, &len);\n"
                         "    if(Orvo::CAM_API_STS_SUCCESS == status){\n"
                         "        ....;\n"
                         "    }\n"
                         "    delete[] buf;\n"
                         "    buf = NULL;\n"
                         "}\n"},
    {Fragment::FloatMaximum, "double dMax = 0;\n"
                             "status = Orvo::Nd_GetFloatMax(hCam, hNode, &dMax);\n"},
    {Fragment::FloatMinimum, "double dMin = 0;\n"
                             "status = Orvo::Nd_GetFloatMin(hCam, hNode, &dMin);\n"},
    {Fragment::FloatHasIncrement, "bool hasInc = 0;\n"
                                  "status = Orvo::Nd_GetFloatHasInc(hCam, hNode, &hasInc);\n"},
    {Fragment::FloatIncrement, "double dInc = 0;\n"
                               "status = Orvo::Nd_GetFloatInc(hCam, hNode, &dInc);\n"},
    {Fragment::IntegerMaximum, "int64_t llMax = 0;\n"
                               "status = Orvo::Nd_GetIntMax(hCam, hNode, &llMax);\n"},
    {Fragment::IntegerMinimum, "int64_t llMin = 0;\n"
                               "status = Orvo::Nd_GetIntMin(hCam, hNode, &llMin);\n"},
    {Fragment::IntegerIncrement, "int64_t llInc = 0;\n"
                                 "status = Orvo::Nd_GetIntInc(hCam, hNode, &llInc);\n"},
    {Fragment::IntegerWrite, "status = Orvo::Nd_SetIntValue(hcam, hNode, %1);\n"},
    {Fragment::EnumIntegerWrite, "status = Orvo::Nd_SetEnumIntValue(hCam, hNode, %1);\n"},
    {Fragment::FloatWrite, "status = Orvo::Nd_SetFloatValue(hCam, hNode, %1);\n"},
    {Fragment::BooleanWrite, "status = Orvo::Nd_SetBoolValue(hCam, hNode, %1);\n"},
    {Fragment::StringWrite, "status = Orvo::Nd_SetStrValue(hCam, hNode, \"%1\");\n"},
    {Fragment::EnumWrite, "status = Orvo::Nd_SetEnumStrValue(hCam, hNode, \"%1\");\n"},
    {Fragment::CommandExecution, "status = Orvo::Nd_CmdExecute'hCam, hNode);\n"},
    {Fragment::PreambleStatus, "Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n"},
    {Fragment::PreambleCamera, "Orvo::CAM_HANDLE hCam = NULL;\n"
                               "status = Orvo::Cam_Open( camIndex, &hCam, .... );\n"},
    {Fragment::PreambleNode, "Orvo::CAM_NODE_HANDLE hNode = NULL;\n"},
};

constexpr bool standInOrder()
{
    for (std::size_t i = 0; i < std::size(kFragments); ++i) {
        if (static_cast<std::size_t>(kFragments[i].fragment) != i)
            return false;
    }
    return kFragments[std::size(kFragments) - 1].fragment == Fragment::PreambleNode;
}
static_assert(standInOrder());

} // namespace

QString text(Fragment fragment)
{
    // Cached, because every access asks for a text although few are used.
    static const auto texts = [] {
        std::array<QString, std::size(kFragments)> all;
        std::transform(std::begin(kFragments), std::end(kFragments), all.begin(),
                       [](const auto& row) { return QString::fromLatin1(row.text); });
        return all;
    }();
    return texts[static_cast<std::size_t>(fragment)];
}

QString text(Fragment fragment, const QString& argument)
{
    // A single replacement, so that place markers in the inserted text are not replaced.
    return text(fragment).arg(argument);
}

QString failureLine(unsigned int status)
{
    return QStringLiteral("Failed!! Status code: 0x%1.\n").arg(status, 8, 16, QLatin1Char('0'));
}

QString preamble()
{
    return text(Fragment::PreambleStatus) + text(Fragment::PreambleCamera) + text(Fragment::PreambleNode);
}

void append(QString& log, const QString& fragment, int level, OperationLogMode mode, unsigned int status)
{
    if (level < mode)
        return;
    log += fragment;
    if (status != 0)
        log += failureLine(status);
}

} // namespace OperationLog
