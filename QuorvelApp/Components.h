#pragma once

// The small pieces that the panes are made of.
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
