#include "WebHost/CertificateGuard_linux.h"

#include "WebHost/StatusPages.h"
#include "WebHost/WebAddress.h"

#include <array>
#include <utility>

namespace quorvel {
namespace {

CertificateGuard& of(gpointer self) {
    return *static_cast<CertificateGuard*>(self);
}

CertificateFaults faultsIn(GTlsCertificateFlags flags) {
    const auto has = [&](GTlsCertificateFlags flag) { return (flags & flag) != 0; };
    return {.isUntrusted = has(G_TLS_CERTIFICATE_UNKNOWN_CA),
            .isOfOtherHost = has(G_TLS_CERTIFICATE_BAD_IDENTITY),
            .isNotYetValid = has(G_TLS_CERTIFICATE_NOT_ACTIVATED),
            .isExpired = has(G_TLS_CERTIFICATE_EXPIRED),
            .isRevoked = has(G_TLS_CERTIFICATE_REVOKED),
            .isInsecure = has(G_TLS_CERTIFICATE_INSECURE)};
}

std::string dateOf(GDateTime* time) {
    if (time == nullptr) {
        return {};
    }
    std::string text = takeText(g_date_time_format(time, "%Y-%m-%d"));
    g_date_time_unref(time);
    return text;
}

CertificateDetails detailsOf(GTlsCertificate* certificate) {
    GByteArray* bytes = nullptr;
    g_object_get(certificate, "certificate", &bytes, nullptr);
    CertificateDetails details{
        .subject = takeText(g_tls_certificate_get_subject_name(certificate)),
        .issuer = takeText(g_tls_certificate_get_issuer_name(certificate)),
        .validFrom = dateOf(g_tls_certificate_get_not_valid_before(certificate)),
        .validUntil = dateOf(g_tls_certificate_get_not_valid_after(certificate))};
    if (bytes != nullptr) {
        details.fingerprint =
            takeText(g_compute_checksum_for_data(G_CHECKSUM_SHA256, bytes->data, bytes->len));
        g_byte_array_unref(bytes);
    }
    return details;
}

} // namespace

std::string CertificateGuard::Refused::key() const {
    return hostOf(address) + " " + fingerprint;
}

CertificateGuard::CertificateGuard(WebKitWebView* view, HostWindow& window,
                                   CertificateExceptions& exceptions, ShowPage showPage)
    : view_(view),
      window_(window),
      exceptions_(exceptions),
      showPage_(std::move(showPage)) {
    onSignal(view, "load-failed-with-tls-errors", failed, this);
}

CertificateGuard::~CertificateGuard() {
    g_signal_handlers_disconnect_by_data(view_, this);
    closeDialog();
}

gboolean CertificateGuard::failed(WebKitWebView* /*view*/, char* address, GTlsCertificate* found,
                                  GTlsCertificateFlags flags, gpointer self) {
    CertificateGuard& guard = of(self);
    const CertificateFaults faults = faultsIn(flags);
    const CertificateDetails details = detailsOf(found);
    Refused refused{textOf(address), keep(found), {}, details.fingerprint};
    const std::string host = hostOf(refused.address);
    // One that fails although it was accepted must not be tried again and again.
    if (guard.exceptions_.accepts(host, details.fingerprint) && canBeExcepted(faults) &&
        guard.used_.insert(refused.key()).second) {
        guard.withdraw();
        guard.refused_ = std::move(refused);
        guard.open();
    } else {
        guard.refuse(std::move(refused), faults, details);
    }
    return TRUE;
}

void CertificateGuard::refuse(Refused refused, const CertificateFaults& faults,
                              const CertificateDetails& details) {
    const std::string reasons = certificateReasons(faults);
    const std::string facts = certificateText(details);
    const std::string address = refused.address;
    refused.text = reasons + "\n\n" + facts;
    withdraw();
    isPageComing_ = true;
    showPage_(certificatePage(address, reasons, facts), address);
    if (canBeExcepted(faults)) {
        refused_ = std::move(refused);
        window_.showOffer("The connection to " + hostOf(address) + " is not secure.",
                          "Open Anyway…", [this] { confirm(); });
    }
}

void CertificateGuard::loadStarted() {
    if (!std::exchange(isPageComing_, false)) {
        withdraw();
    }
}

void CertificateGuard::withdraw() {
    refused_.reset();
    window_.hideOffer();
    closeDialog();
}

void CertificateGuard::closeDialog() {
    if (GtkWidget* const dialog = dialog_) {
        g_clear_weak_pointer(&dialog_);
        gtk_window_destroy(GTK_WINDOW(dialog));
    }
}

void CertificateGuard::confirm() {
    if (!refused_ || dialog_ != nullptr) {
        return;
    }
    const std::string host = hostOf(refused_->address);
    const std::string heading = "Open " + host + " although it is not secure?";
    asked_ = refused_->key();
    GtkWidget* const dialog = gtk_message_dialog_new(
        window_.widget(),
        static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        GTK_MESSAGE_WARNING, GTK_BUTTONS_NONE, "%s", heading.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), heading.c_str());
    const std::string text =
        refused_->text +
        "\n\nPasswords may reach someone else. This certificate is remembered for " + host +
        "; Site Settings can remove it.";
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", text.c_str());
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Don’t Open", GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), "Open _Anyway", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    onSignal(
        dialog, "response",
        [](GtkDialog*, int response, gpointer self) { of(self).answered(response); }, this);
    g_set_weak_pointer(&dialog_, dialog);
    gtk_window_present(GTK_WINDOW(dialog));
}

void CertificateGuard::answered(int response) {
    closeDialog();
    // The user has agreed to what the dialog said, and to nothing that came after it.
    if (response != GTK_RESPONSE_OK || !refused_ || refused_->key() != asked_) {
        return;
    }
    used_.insert(asked_);
    if (!exceptions_.add(hostOf(refused_->address), refused_->fingerprint)) {
        window_.showMessage("The certificate can’t be remembered");
    }
    open();
}

void CertificateGuard::open() {
    const Refused opened = std::move(*std::exchange(refused_, std::nullopt));
    const std::string host = hostOf(opened.address);
    exceptions_.engineAccepts(host);
    webkit_network_session_allow_tls_certificate_for_host(
        webkit_web_view_get_network_session(view_), opened.certificate.get(), host.c_str());
    webkit_web_view_load_uri(view_, opened.address.c_str());
}

} // namespace quorvel
