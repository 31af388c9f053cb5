#pragma once

#include "internal/CommandRunner_p.h"

#include <QString>

// Shared by UsbPort.cpp, which switches the USB port, and CalibrationBridge.cpp.

namespace Internal {

extern const QString serialLine; ///< device of the serial gadget
extern const QString bridgeCommand; ///< connects the serial line with the measuring hardware
extern const QString listBridge; ///< shell command: lists the processes of the bridge
extern const QString calibrationTool; ///< program of the system calibration
extern const QString listCalibrationTool; ///< shell command: lists the processes of that program

constexpr Waits startAndFinish {3000, 5000};
constexpr Waits finishOnly {Waits::NoStartWait, 5000};

/** Whether a command has finished; if not, logs how far it came, such as "COMMAND no started!". */
bool isFinished(const CommandResult &result, const QString &command);

} // namespace Internal
