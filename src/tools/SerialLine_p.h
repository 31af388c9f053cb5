#pragma once

#include "internal/CommandRunner_p.h"

#include <QString>

// Shared by what switches the USB port and what runs on its serial line.

namespace Internal {

extern const QString serialLine; ///< device of the serial gadget
extern const QString bridgeCommand; ///< connects the serial line with the measuring hardware
extern const QString listBridge; ///< shell: the process list's lines with the bridge
extern const QString calibrationTool; ///< program of the system calibration
extern const QString listCalibrationTool; ///< shell: the process list's lines with it

constexpr Waits startAndFinish {3000, 5000};
constexpr Waits finishOnly {Waits::NoStartWait, 5000};

/** Whether a command came to its end; else logs how far it came: "COMMAND no started!". */
bool isFinished(const CommandResult &result, const QString &command);

} // namespace Internal
