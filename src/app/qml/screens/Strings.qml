pragma Singleton
import QtQuick

// The texts of the screens, one group per screen family. Each English text is the key of the
// translation table ("Strings" context); without a translation the key itself shows.
QtObject {
    readonly property QtObject app: QtObject {
        readonly property string name: "Halcyra"
    }
    readonly property QtObject onboarding: QtObject {
        readonly property string welcomeTitle: qsTr("Welcome to Halcyra!")
        readonly property string welcomeSubtitle: qsTr("Your Mac's personal cleaning assistant. Scan and clean junk files to free up space.")
    }
    readonly property QtObject navigation: QtObject {
        readonly property string dashboard: qsTr("Dashboard")
        readonly property string clean: qsTr("Cleaner")
        readonly property string update: qsTr("Updater")
        readonly property string settings: qsTr("Settings")
        readonly property string duplicates: qsTr("Duplicates")
        readonly property string uninstaller: qsTr("Uninstaller")
        readonly property string resetter: qsTr("Resetter")
        readonly property string shredder: qsTr("Shredder")
        readonly property string diskAnalyzer: qsTr("Disk Space")
        readonly property string startupItems: qsTr("Startup Items")
    }
    readonly property QtObject clean: QtObject {
        readonly property string title: qsTr("Cleaner")
        readonly property string subtitle: qsTr("Remove junk files and free up space")
        readonly property string scanButton: qsTr("Scan for Junk")
        readonly property string scanning: qsTr("Scanning your Mac…")
        readonly property string scanSubtitle: qsTr("Looking for files that can be safely removed.")
        readonly property string executing: qsTr("Cleaning…")
        readonly property string executingSubtitle: qsTr("Removing selected items. This may take a moment.")
        readonly property string summaryTitle: qsTr("Cleanup Complete!")
        readonly property string freed: qsTr("Freed")
        readonly property string scanAgain: qsTr("Scan Again")
        readonly property string done: qsTr("Done")
        readonly property string confirmTitle: qsTr("Confirm Cleanup")
        readonly property string confirmMessage: qsTr("This will permanently delete the selected files. This action cannot be undone.")
        readonly property string confirmButton: qsTr("Clean Now")
    }
    readonly property QtObject duplicates: QtObject {
        readonly property string title: qsTr("Find Duplicates")
        readonly property string subtitle: qsTr("Find and remove duplicate files")
        readonly property string scanning: qsTr("Scanning for duplicates…")
        readonly property string scanSubtitle: qsTr("Comparing file contents to find exact duplicates.")
        readonly property string noDuplicates: qsTr("No duplicate files found. Your files are unique!")
        readonly property string deleteSelected: qsTr("Delete Selected")
        readonly property string keepNewest: qsTr("Keep Newest")
        readonly property string keepOldest: qsTr("Keep Oldest")
        readonly property string summaryTitle: qsTr("Duplicates Cleaned!")
        readonly property string confirmTitle: qsTr("Confirm Deletion")
        readonly property string confirmMessage: qsTr("This will permanently delete the selected duplicate files. This action cannot be undone.")
        readonly property string confirmButton: qsTr("Delete Now")
    }
    readonly property QtObject settings: QtObject {
        readonly property string title: qsTr("Settings")
        readonly property string about: qsTr("About")
        readonly property string openSourceLicenses: qsTr("Open Source Licenses")
    }
    readonly property QtObject about: QtObject {
        readonly property string appDescription: qsTr("A native macOS utility for keeping your Mac clean and running smoothly.")
    }
    readonly property QtObject diskAnalyzer: QtObject {
        readonly property string title: qsTr("Disk Analyzer")
        readonly property string subtitle: qsTr("Visualize disk usage by folder")
        readonly property string description: qsTr("Understand what's taking up space on your disk with an interactive treemap visualization.")
        readonly property string scanning: qsTr("Analyzing disk usage…")
        readonly property string scanSubtitle: qsTr("Calculating folder sizes. This may take a moment for large directories.")
        readonly property string revealInFinder: qsTr("Reveal in Finder")
        readonly property string rescan: qsTr("Rescan")
        readonly property string back: qsTr("Back")
        readonly property string files: qsTr("files")
        readonly property string folders: qsTr("folders")
        readonly property string remove: qsTr("Remove")
        readonly property string confirmDeleteTitle: qsTr("Remove Selected Items?")
        readonly property string confirmDeleteMessage: qsTr("The selected files and folders will be moved to Trash. This action cannot be undone.")
        readonly property string selectedItems: qsTr("selected")
    }
    readonly property QtObject components: QtObject {
        readonly property string retry: qsTr("Retry")
        readonly property string cancel: qsTr("Cancel")
    }
    readonly property QtObject errors: QtObject {
        readonly property string scanFailed: qsTr("Scan failed. Please try again.")
        readonly property string cleanFailed: qsTr("Cleanup failed. Please try again.")
        readonly property string timeout: qsTr("The operation took too long. Please try again.")
        readonly property string permissionDenied: qsTr("Permission denied. Please check system permissions.")
        readonly property string unknown: qsTr("An unexpected error occurred. Please try again.")
    }
}
