#include "WebHost/Settings/SiteDataList_macos.h"

#include "Base/TerminalText.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Settings/SettingsEditor.h"
#include "WebHost/Settings/SettingsRows_macos.h"
#include "WebHost/Storage/WebStore_macos.h"

#include <utility>

@implementation QuorvelSiteDataList {
    WKWebsiteDataStore* _store;
    std::string _name;
    std::function<void()> _cleared;
    NSStackView* _list;
    NSTextField* _state;
}

- (instancetype)initWithStore:(WKWebsiteDataStore*)store
                         name:(const std::string&)cloneName
                      cleared:(std::function<void()>)cleared {
    self = [super init];
    if (self != nil) {
        _store = store;
        _name = cloneName;
        _cleared = std::move(cleared);
        __weak QuorvelSiteDataList* const weakSelf = self;
        NSStackView* const section = quorvel::newSection(@"Data");
        _list = quorvel::newColumn(@[]);
        _state = quorvel::newHint("");
        [section addArrangedSubview:quorvel::newHint(quorvel::SettingsText::data)];
        [section addArrangedSubview:_list];
        [section addArrangedSubview:_state];
        quorvel::addButton(
            section, quorvel::newButton(@"Clear All Data…", [weakSelf] { [weakSelf confirm]; }));
        _view = section;
    }
    return self;
}

- (void)refresh {
    __weak QuorvelSiteDataList* const weakSelf = self;
    [_store fetchDataRecordsOfTypes:[WKWebsiteDataStore allWebsiteDataTypes]
                  completionHandler:^(NSArray<WKWebsiteDataRecord*>* records) {
                    [weakSelf list:records];
                  }];
}

- (void)list:(NSArray<WKWebsiteDataRecord*>*)records {
    __weak QuorvelSiteDataList* const weakSelf = self;
    quorvel::SettingsEditor::Rows rows;
    for (WKWebsiteDataRecord* record in records) {
        const std::string site = quorvel::withoutUnsafe(quorvel::textOf(record.displayName));
        rows.push_back(
            {site, "Remove the data of " + site, [weakSelf, record] { [weakSelf remove:record]; }});
    }
    quorvel::fillList(_list, rows, quorvel::SettingsText::noData);
}

- (void)remove:(WKWebsiteDataRecord*)record {
    __weak QuorvelSiteDataList* const weakSelf = self;
    [_store removeDataOfTypes:record.dataTypes
               forDataRecords:@[ record ]
            completionHandler:^{
              [weakSelf dataCleared];
            }];
}

- (void)dataCleared {
    _state.stringValue = quorvel::nsText(quorvel::SettingsText::dataCleared);
    _cleared();
    [self refresh];
}

- (void)confirm {
    NSWindow* const window = _view.window;
    if (window == nil) {
        return;
    }
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.messageText = quorvel::nsText(quorvel::SettingsText::clearsData(_name));
    alert.informativeText = quorvel::nsText(quorvel::SettingsText::clearing);
    [alert addButtonWithTitle:@"Keep"];
    [alert addButtonWithTitle:@"Clear"];
    __weak QuorvelSiteDataList* const weakSelf = self;
    [alert beginSheetModalForWindow:window
                  completionHandler:^(NSModalResponse response) {
                    if (response == NSAlertSecondButtonReturn) {
                        [weakSelf clearAll];
                    }
                  }];
}

- (void)clearAll {
    __weak QuorvelSiteDataList* const weakSelf = self;
    quorvel::clearWebStore(_store, ^{
      [weakSelf dataCleared];
    });
}

@end
