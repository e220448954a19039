#pragma once

// The small widgets of which the panes consist.
#include "Presentation/CloneFacts.h"
#include "Presentation/StrategyTexts.h"
#include "QuorvelApp/widgets/AppIcon.h"
#include "QuorvelApp/widgets/Buttons.h"
#include "QuorvelApp/widgets/HexColor.h"
#include "QuorvelApp/widgets/InfoRow.h"
#include "QuorvelApp/widgets/Labels.h"
#include "QuorvelApp/widgets/PaneComboBox.h"
#include "QuorvelApp/widgets/Spinner.h"
#include "QuorvelApp/widgets/StatusDot.h"
#include "QuorvelApp/widgets/WrappingCheckBox.h"
