#include "Models/WorkspaceSnapshot.h"
#include "support/SampleWorkspace.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A change of any one field makes a record unequal and, but for chance, gives another hash.
template <typename Record>
void expectEveryChangeCounts(const Record& record,
                             const QList<std::function<void(Record&)>>& changes) {
    for (qsizetype index = 0; index < changes.size(); ++index) {
        Record changed = record;
        EXPECT_EQ(changed, record);
        EXPECT_EQ(qHash(changed), qHash(record));
        changes.at(index)(changed);
        EXPECT_NE(changed, record) << "change " << index;
        EXPECT_NE(qHash(changed), qHash(record)) << "change " << index;
    }
}

TEST(Records, CompareAndHashOverAllFields) {
    const WorkspaceSnapshot sample = sampleWorkspace();
    const QUuid otherId(u"99999999-9999-9999-9999-999999999999"_s);
    expectEveryChangeCounts<ScreenMask>(
        sample.masks[0],
        {[&](auto& it) { it.id = otherId; }, [](auto& it) { it.name += u'x'; },
         [](auto& it) { it.frame.x = std::nextafter(it.frame.x, 0); },
         [](auto& it) { it.frame.y += 1; }, [](auto& it) { it.frame.width += 1; },
         [](auto& it) { it.frame.height += 1; }, [](auto& it) { it.opacity = 0.5; },
         [](auto& it) { it.colorHex = u"#101115"_s; }, [](auto& it) { it.isVisible ^= true; },
         [](auto& it) { it.isClickThrough ^= true; },
         [](auto& it) { it.style = ScreenMask::Style::frosted; },
         [&](auto& it) { it.groupID = otherId; }, [](auto& it) { it.groupID = QUuid(); }});
    expectEveryChangeCounts<MaskGroup>(
        sample.groups[0],
        {[&](auto& it) { it.id = otherId; }, [](auto& it) { it.name += u'x'; },
         [](auto& it) { it.isExpanded ^= true; }, [](auto& it) { it.isVisible ^= true; },
         [](auto& it) { it.isLocked ^= true; }});
    expectEveryChangeCounts<MaskPreset>(
        sample.presets[0],
        {[&](auto& it) { it.id = otherId; }, [](auto& it) { it.name += u'x'; },
         [](auto& it) { it.trigger += u'x'; }, [](auto& it) { it.masks[0].opacity = 0.5; },
         [](auto& it) { it.masks.clear(); }, [](auto& it) { it.autoApply ^= true; },
         [](auto& it) { it.targetAppName.reset(); }, [](auto& it) { it.targetAppName = u""_s; },
         [](auto& it) { it.targetBundleIdentifier.reset(); }, [](auto& it) { it.priority += 1; }});
    expectEveryChangeCounts<AppSettings>(
        sample.settings,
        {[](auto& it) { it.defaultOpacity = 0.5; }, [](auto& it) { it.defaultColorHex += u'x'; },
         [](auto& it) { it.defaultStyle = ScreenMask::Style::blackout; },
         [](auto& it) { it.defaultClickThrough ^= true; },
         [](auto& it) { it.showHelpOnLaunch ^= true; },
         [](auto& it) { it.menuBarOnlyMode ^= true; },
         [](auto& it) { it.showDashboardOnLaunch ^= true; },
         [](auto& it) { it.hotkeyBindings.remove(u"toggleAll"_s); },
         [](auto& it) { it.hotkeyBindings[u"toggleAll"_s].keyCode += 1; },
         [](auto& it) { it.hotkeyBindings[u"toggleAll"_s].modifiers += 1; },
         [](auto& it) { it.lastSeenVersion.reset(); },
         [](auto& it) { it.autoShowMasksOnScreenShare.reset(); },
         [](auto& it) { it.autoShowMasksOnScreenShare = true; }});
}

TEST(Records, StylesAndPresetsHaveTheirTexts) {
    const QStringList displayNames{u"Blackout"_s, u"Frosted"_s, u"Soft Tint"_s};
    const QStringList storedTexts{u"blackout"_s, u"frosted"_s, u"softTint"_s};
    for (qsizetype index = 0; index < storedTexts.size(); ++index) {
        const auto style = ScreenMask::allStyles.at(static_cast<std::size_t>(index));
        EXPECT_EQ(ScreenMask::styleFromStoredText(storedTexts[index]), style);
        EXPECT_EQ(ScreenMask::storedText(style), storedTexts[index]);
        EXPECT_EQ(ScreenMask::displayName(style), displayNames[index]);
    }

    MaskPreset preset = sampleWorkspace().presets[0];
    EXPECT_EQ(preset.activationSummary(), u"Auto for Präsentation • P-3"_s);
    preset.targetAppName.reset();
    EXPECT_EQ(preset.activationSummary(), u"Manual"_s);
    preset.targetAppName = u"Präsentation"_s;
    preset.autoApply = false;
    EXPECT_EQ(preset.activationSummary(), u"Manual"_s);
}

}  // namespace
