// expected: Potential leak of an object stored into 'bytes'
#import <Foundation/Foundation.h>

NSUInteger lengthOf(SecCertificateRef certificate) {
    CFDataRef bytes = SecCertificateCopyData(certificate);
    return ((__bridge NSData*)bytes).length;
}
