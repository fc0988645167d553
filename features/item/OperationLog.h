#pragma once

#include <QString>

/// Which camera accesses are logged as code; an entry is made if the level is at least its mode.
enum OperationLogMode : int {
    OpeLogOff = 0,
    OpeLogWrite = 1, ///< writes, commands, and the opening lines of a camera
    OpeLogRead = 2,  ///< value reads
    OpeLogRange = 3, ///< maximum, minimum, increment
};

/// Code fragments against the camera API that show how an access is written. The spellings of the fragments, slips
/// included, are part of the interface: receivers compare them.
namespace OperationLog {

enum class Fragment : int {
    NodeLookup, ///< %1 = the node's name; precedes an entry
    IntegerRead,
    FloatRead,
    BooleanRead,
    EnumIntegerRead,
    StringRead,
    EnumRead,
    FloatMaximum,
    FloatMinimum,
    FloatHasIncrement,
    FloatIncrement,
    IntegerMaximum,
    IntegerMinimum,
    IntegerIncrement,
    IntegerWrite,     ///< %1 = the value
    EnumIntegerWrite, ///< %1 = the value
    FloatWrite,       ///< %1 = the value
    BooleanWrite,     ///< %1 = "true" or "false"
    StringWrite,      ///< %1 = the text
    EnumWrite,        ///< %1 = the entry's symbolic name
    CommandExecution,
    PreambleStatus,
    PreambleCamera,
    PreambleNode,
};

/// The lines of a fragment without %1.
[[nodiscard]] QString text(Fragment fragment);

/// The lines of a fragment with %1 replaced; place markers within `argument` are left alone.
[[nodiscard]] QString text(Fragment fragment, const QString& argument);

/// The line that follows a fragment whose call failed.
[[nodiscard]] QString failureLine(unsigned int status);

/// The lines that open a log: status variable, camera, node variable.
[[nodiscard]] QString preamble();

/// Adds `fragment`, and the failure line if `status` is not 0, to `log`; does nothing if `level` is below `mode`.
void append(QString& log, const QString& fragment, int level, OperationLogMode mode, unsigned int status);

} // namespace OperationLog
