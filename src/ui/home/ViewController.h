#pragma once

#include <QList>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/FileCleanerEngine.h"
#include "ui/home/CleanItemCardView.h"
#include "ui/presentation/AlertController.h"
#include "ui/presentation/CleanOutcome.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/presentation/ScrollReporter.h"

namespace sweepwright::ui {

/// The first tab: how full the device is, the cards of the categories, scans and cleans.
///
/// Used on the main thread. What runs elsewhere holds a QPointer, which it asks on the main
/// thread; its results are dropped when the screen is gone.
class ViewController : public sweepwright::ui::ScreenController, public CleanItemCardViewDelegate {
    // The base is named in full, as Qt's type registrar takes it as written.
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    /// From 0 to 1.
    Q_PROPERTY(double storageProgress READ storageProgress NOTIFY storageChanged)
    Q_PROPERTY(ProgressColor storageColor READ storageColor NOTIFY storageChanged)
    /// Two lines in the middle of the ring.
    Q_PROPERTY(QString storageText READ storageText NOTIFY storageChanged)
    Q_PROPERTY(QString storageInfo READ storageInfo NOTIFY storageChanged)
    Q_PROPERTY(QString storageCapacityNote READ storageCapacityNote NOTIFY textsChanged)
    Q_PROPERTY(QString cacheReboundNote READ cacheReboundNote NOTIFY textsChanged)
    Q_PROPERTY(QString scanTitle READ scanTitle NOTIFY textsChanged)
    Q_PROPERTY(QString cleanAllTitle READ cleanAllTitle NOTIFY textsChanged)
    Q_PROPERTY(QString cleanItemsTitle READ cleanItemsTitle CONSTANT)
    Q_PROPERTY(QString developerHandle READ developerHandle CONSTANT)
    Q_PROPERTY(QString repositoryAddress READ repositoryAddress CONSTANT)
    /// Whether the scan that the button starts is under way; the button is disabled meanwhile.
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanningChanged)
    Q_PROPERTY(QList<sweepwright::ui::CleanItemCardView*> cards READ cards CONSTANT)
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)

  public:
    /// The ring's colour: green below 60 %, orange below 80 %, red from there on.
    enum ProgressColor { SystemGreen, SystemOrange, SystemRed };
    Q_ENUM(ProgressColor)

    static constexpr double kOrangeFrom = 60.0;  ///< percent used
    static constexpr double kRedFrom = 80.0;

    explicit ViewController(const ScreenServices& services);
    ~ViewController() override;

    [[nodiscard]] double storageProgress() const { return usagePercentage_ / 100.0; }
    [[nodiscard]] ProgressColor storageColor() const { return colorOf(usagePercentage_); }
    [[nodiscard]] static ProgressColor colorOf(double usagePercentage);
    [[nodiscard]] const QString& storageText() const { return storageText_; }
    [[nodiscard]] const QString& storageInfo() const { return storageInfo_; }
    [[nodiscard]] QString storageCapacityNote() const { return texts("Storage Capacity Note"); }
    [[nodiscard]] QString cacheReboundNote() const { return texts("Cache Rebound Note"); }
    [[nodiscard]] QString scanTitle() const { return texts("Scan Junk Files"); }
    [[nodiscard]] QString cleanAllTitle() const { return texts("One-Click Clean All"); }
    /// As it was when the screen was made, whatever the language is now. So are the cards' titles.
    [[nodiscard]] const QString& cleanItemsTitle() const { return cleanItemsTitle_; }
    [[nodiscard]] static QString developerHandle();
    [[nodiscard]] static QString repositoryAddress();
    [[nodiscard]] bool scanning() const { return scanning_; }
    [[nodiscard]] QList<CleanItemCardView*> cards() const;
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }

    [[nodiscard]] CleanItemCardView& cacheCard() const { return *cards_[0]; }
    [[nodiscard]] CleanItemCardView& tempCard() const { return *cards_[1]; }
    [[nodiscard]] CleanItemCardView& cookieCard() const { return *cards_[2]; }
    [[nodiscard]] CleanItemCardView& logCard() const { return *cards_[3]; }
    [[nodiscard]] CleanItemCardView& appCacheCard() const { return *cards_[4]; }
    /// Bytes that the last full scan found.
    [[nodiscard]] std::uint64_t totalCleanableSize() const { return totalCleanableSize_; }
    /// The apps of the last scan of them.
    [[nodiscard]] const std::vector<AppCacheInfo>& thirdPartyAppList() const {
        return thirdPartyAppList_;
    }

    void updateStorageInfo();
    /// Sizes and lists of four categories, then the apps.
    void performInitialScan();
    void scanThirdPartyAppCaches();
    Q_INVOKABLE void scanButtonTapped();

    void cleanCacheTapped();
    void cleanTempTapped();
    void cleanCookieTapped();
    void cleanLogTapped();
    void cleanAppCacheTapped();
    Q_INVOKABLE void cleanAllTapped();
    void cacheCardTapped() { cacheCard().toggleExpanded(true); }
    void tempCardTapped() { tempCard().toggleExpanded(true); }
    void cookieCardTapped() { cookieCard().toggleExpanded(true); }
    void logCardTapped() { logCard().toggleExpanded(true); }
    void appCacheCardTapped() { appCacheCard().toggleExpanded(true); }
    /// Cleans one category or, by CleanType::All, everything, behind an alert that can't be closed.
    /// `title` names what is cleaned; no alert shows it.
    void cleanWithType(CleanType type, const QString& title);

    /// Whether a tap at a point of a card is the card's: not in its open table, not on its clean
    /// button. Any tap on what is none of the cards is.
    Q_INVOKABLE bool gestureRecognizerShouldReceiveTouch(sweepwright::ui::CleanItemCardView* card,
                                                         QPointF point) const;
    void cleanItemCardViewDidTapFilePath(CleanItemCardView& card, const std::string& path) override;
    /// Hands a device path to the Filza file manager.
    void openPathInFilza(const std::string& path);
    /// The link of the credit line was tapped.
    Q_INVOKABLE void creditLinkTapped();

  Q_SIGNALS:
    void storageChanged();
    void textsChanged();
    void scanningChanged();

  protected:
    void viewDidLoad() override;

  private:
    struct Lists;
    struct Sizes;
    using Message = std::function<QString(const std::string& item, double fraction)>;
    using StartClean =
        std::function<void(FileCleanerEngine::Progress, FileCleanerEngine::Completion,
                           std::shared_ptr<CleanObserver> observer)>;
    /// How a clean ended.
    struct CleanEnd {
        bool success = false;
        std::uint64_t cleanedBytes = 0;
        std::optional<platform::Error> error;
    };

    [[nodiscard]] QString texts(std::string_view key) const { return services_.texts(key); }
    [[nodiscard]] std::string format(std::string_view key) const;
    /// Whether something lies over the screen, so that no button of it can have been tapped.
    [[nodiscard]] bool isCovered() const;
    void languageChanged();
    void connectCard(std::size_t at);

    void showSizes(const Sizes& sizes);
    void showLists(Lists lists);
    void fetchLists();
    void scanDidComplete(const ScanResult& result);
    void showApps(const std::vector<AppCacheInfo>& apps);

    std::unique_ptr<AlertController> makeAlert(const QString& title, const QString& message);
    void present(std::unique_ptr<AlertController> alert);
    /// An alert with nothing but an "OK".
    void tell(std::string_view titleKey, const QString& message);
    void confirm(std::string_view titleKey, std::string_view messageKey,
                 const std::function<void()>& clean);
    void performCleanAppCache();
    void performClean(const QString& alertTitle, const Message& message, CleanFigure figure,
                      const StartClean& start, std::function<void()> afterSuccess);
    void cleanDidComplete(const CleanEnd& end, CleanFigure figure, const Failures& failures,
                          const std::function<void()>& afterSuccess);

    [[nodiscard]] const AppCacheInfo* appOfEntry(const std::string& entry) const;
    void offerFilza(std::string_view titleKey, std::string_view messageKey,
                    const std::string& path);
    void showFilzaNotInstalledAlert();

    ScreenServices services_;
    ScrollReporter scrolling_;
    std::unique_ptr<platform::DispatchQueue> background_;
    QString cleanItemsTitle_;
    std::array<std::unique_ptr<CleanItemCardView>, 5> cards_;
    double usagePercentage_ = 0.0;
    QString storageText_;
    QString storageInfo_;
    bool scanning_ = false;
    std::uint64_t totalCleanableSize_ = 0;
    std::vector<AppCacheInfo> thirdPartyAppList_;
    std::stop_source closing_;  ///< ends what runs in the background once the screen goes
};

}  // namespace sweepwright::ui
